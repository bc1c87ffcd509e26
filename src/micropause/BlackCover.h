#pragma once

#include <QWidget>

class QScreen;

namespace tarvo {

// A plain black window over one whole monitor, for the monitors the break panel is not on, so that a
// blanked micropause leaves nothing to read or click anywhere. It never takes the focus on its own;
// an Esc that reaches it anyway is passed on.
class BlackCover : public QWidget {
    Q_OBJECT

public:
    explicit BlackCover(QScreen* screen);

signals:
    void escapePressed();

protected:
    void keyPressEvent(QKeyEvent* event) override;
};

} // namespace tarvo
