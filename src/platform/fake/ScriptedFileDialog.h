#pragma once

#include "core/FileDialog.h"

#include <deque>
#include <vector>

namespace tarvo {

// Answers file dialogs from a script and remembers what they asked. An unscripted dialog is cancelled.
class ScriptedFileDialog : public FileDialog {
public:
    std::optional<QString> getOpenFileName(const OpenRequest& request, QWidget*) override {
        requests_.push_back(request);
        if (answers_.empty())
            return std::nullopt;
        const Answer answer = answers_.front();
        answers_.pop_front();
        if (!answer.chosen)
            return std::nullopt;
        return answer.path;
    }

    void chooseNext(const QString& path) { answers_.push_back({true, path}); }
    void cancelNext() { answers_.push_back({false, {}}); }
    const std::vector<OpenRequest>& requests() const { return requests_; }

private:
    struct Answer {
        bool chosen;
        QString path;
    };
    std::deque<Answer> answers_;
    std::vector<OpenRequest> requests_;
};

} // namespace tarvo
