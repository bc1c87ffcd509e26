// The window a user types in, as a native client of whatever platform Qt is given: a line edit whose
// text goes to standard output as it changes, so that a test sees where the keyboard's keys go.
#include <QApplication>
#include <QLineEdit>
#include <QTextStream>

int main(int argc, char** argv) {
    QApplication app(argc, argv);
    QLineEdit edit;
    edit.setWindowTitle(QStringLiteral("Busy work"));
    QObject::connect(&edit, &QLineEdit::textChanged,
                     [](const QString& text) { QTextStream(stdout) << text << Qt::endl; });
    edit.resize(400, 100);
    edit.show();
    QTextStream(stdout) << "shown" << Qt::endl;
    return app.exec();
}
