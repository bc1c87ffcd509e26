#pragma once

#include <QWidget>

#include <array>

class QToolButton;

namespace tarvo {

// The multimedia button bar: previous, next, play, pause and stop. The classic bar drives a device
// itself unless a button's handler cancels the action; this one drives no device at all, and each
// handler receives the Cancel flag only because the handlers are written to the classic interface:
// what a button does is entirely the handler's. The buttons take the keyboard focus (Tab) and are
// pressed with Space, so the bar works from the keyboard alone.
class MMControl : public QWidget {
    Q_OBJECT

public:
    enum Button { Prev, Next, Play, Pause, Stop };

    class Listener {
    public:
        virtual void MMControl_PrevClick(bool& Cancel) = 0;
        virtual void MMControl_NextClick(bool& Cancel) = 0;
        virtual void MMControl_PlayClick(bool& Cancel) = 0;
        virtual void MMControl_PauseClick(bool& Cancel) = 0;
        virtual void MMControl_StopClick(bool& Cancel) = 0;

    protected:
        ~Listener() = default;
    };

    explicit MMControl(QWidget* parent = nullptr);

    void setListener(Listener* listener) { listener_ = listener; }
    void setButtonEnabled(Button button, bool enabled);
    bool isButtonEnabled(Button button) const;
    QToolButton* button(Button button) const { return buttons_[button]; }

private:
    void clicked(Button button);

    std::array<QToolButton*, 5> buttons_{};
    Listener* listener_ = nullptr;
};

} // namespace tarvo
