// The window a user types in, as a native client of whatever platform Qt is given: a line edit whose
// text goes to standard output as it changes, so that a test sees where the keyboard's keys go. It
// also says when it stops ("covered") and starts ("shown") being seen: it paints every frame, and a
// Wayland compositor stops sending the frames of a surface that nobody sees, after which Qt takes
// the window as not exposed.
#include <QApplication>
#include <QLineEdit>
#include <QTextStream>
#include <QWindow>

namespace {
class WorkEdit : public QLineEdit {
public:
    // Its window's exposure, which arrives from the event loop, after show().
    void showAndWatch() {
        show();
        windowHandle()->installEventFilter(this);
    }

protected:
    void paintEvent(QPaintEvent* event) override {
        QLineEdit::paintEvent(event);
        update(); // the next frame is asked for at once, so a missing one is noticed
    }
    bool eventFilter(QObject* window, QEvent* event) override {
        if (event->type() == QEvent::Expose && static_cast<QWindow*>(window)->isExposed() != exposed_) {
            exposed_ = !exposed_;
            QTextStream(stdout) << (exposed_ ? "shown" : "covered") << Qt::endl;
        }
        return false;
    }

private:
    bool exposed_ = false;
};
} // namespace

int main(int argc, char** argv) {
    QApplication app(argc, argv);
    WorkEdit edit;
    edit.setWindowTitle(QStringLiteral("Busy work"));
    QObject::connect(&edit, &QLineEdit::textChanged,
                     [](const QString& text) { QTextStream(stdout) << text << Qt::endl; });
    edit.resize(400, 100);
    edit.showAndWatch();
    return app.exec();
}
