#pragma once

#include <QString>

namespace tarvo {

// Message boxes go through this façade so that tests can answer them in advance.
class MessageBox {
public:
    enum class Buttons { Ok, YesNo };
    enum class Icon { None, Information, Question, Critical };
    enum class Answer { Ok, Yes, No };

    virtual ~MessageBox() = default;
    virtual Answer show(const QString& text, const QString& title, Buttons buttons = Buttons::Ok,
                        Icon icon = Icon::None) = 0;
};

} // namespace tarvo
