#pragma once

#include <QApplication>

namespace tarvo {

class MessageBox;

// The application object with the single top-level error handler: an error that escapes any event
// handler (a timer tick, a click) ends the program through endWithFatalError.
class TarvoApplication : public QApplication {
public:
    TarvoApplication(int& argc, char** argv);
    void setMessageBox(MessageBox* box) { box_ = box; }
    bool notify(QObject* receiver, QEvent* event) override;

private:
    MessageBox* box_ = nullptr;
};

} // namespace tarvo
