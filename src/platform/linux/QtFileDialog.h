#pragma once

#include "core/FileDialog.h"

#include <QStringList>

namespace tarvo {

class QtFileDialog : public FileDialog {
public:
    std::optional<QString> getOpenFileName(const OpenRequest& request, QWidget* parent) override;

    // The request's "|"-separated filter as Qt's name filters: "Audio|*.wav|All files|*.*" becomes
    // "Audio (*.wav)" and "All files (*)", and "Video (*.avi)|*.avi;" stays "Video (*.avi)". "*.*"
    // means every file, also those without a dot.
    static QStringList nameFilters(const QString& filter);
};

} // namespace tarvo
