#pragma once

#include <QWidget>

class QScreen;

namespace tarvo {

// A plain black window over one whole monitor, for the monitors a blanked break's own window is not
// on, so that the break leaves nothing to read or click anywhere. It stays above other windows and
// never takes the focus on its own; an Esc that reaches it anyway goes to its listener.
class BlackCover : public QWidget {
    Q_OBJECT

public:
    class Listener {
    public:
        virtual void escapeOnCover() = 0;

    protected:
        ~Listener() = default;
    };

    BlackCover(QScreen* screen, Listener& listener);

protected:
    void keyPressEvent(QKeyEvent* event) override;

private:
    Listener& listener_;
};

} // namespace tarvo
