#pragma once

#include <QString>

#include <optional>

class QWidget;

namespace tarvo {

// The file-open dialog goes through this façade so that tests can choose the file in advance.
class FileDialog {
public:
    struct OpenRequest {
        QString title;
        QString defaultExtension; // with its dot (".wav"); added to a typed name that has none
        // Descriptions and their patterns, alternating, separated by "|"; patterns of one entry are
        // separated by ";" ("Audio|*.wav|All files|*.*"). The first entry is preselected.
        QString filter;
        bool fileMustExist = true;
    };

    virtual ~FileDialog() = default;
    // The chosen file's full path, or nothing when the user cancels.
    virtual std::optional<QString> getOpenFileName(const OpenRequest& request, QWidget* parent) = 0;
};

} // namespace tarvo
