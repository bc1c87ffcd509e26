#pragma once

#include "core/MessageBox.h"

#include <QString>

#include <deque>
#include <vector>

namespace tarvo {

// Answers message boxes from a script and remembers what they said. Unscripted questions get No,
// unscripted notices Ok.
class ScriptedMessageBox : public MessageBox {
public:
    struct Shown {
        QString text, title;
        Buttons buttons;
        Icon icon;
    };

    Answer show(const QString& text, const QString& title, Buttons buttons, Icon icon) override {
        shown_.push_back({text, title, buttons, icon});
        if (!answers_.empty()) {
            const Answer a = answers_.front();
            answers_.pop_front();
            return a;
        }
        return buttons == Buttons::YesNo ? Answer::No : Answer::Ok;
    }

    void answerNext(Answer a) { answers_.push_back(a); }
    const std::vector<Shown>& shown() const { return shown_; }

private:
    std::deque<Answer> answers_;
    std::vector<Shown> shown_;
};

} // namespace tarvo
