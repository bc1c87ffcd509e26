#pragma once

#include "core/MessageBox.h"

namespace tarvo {

class QtMessageBox : public MessageBox {
public:
    Answer show(const QString& text, const QString& title, Buttons buttons, Icon icon) override;
};

} // namespace tarvo
