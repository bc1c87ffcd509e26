// A bare Qt Widgets program with an icon in the notification area and a small menu, and nothing else:
// the yardstick that tray_startup_bench.sh starts and measures beside the reminder. Whatever the
// reminder spends above it is the reminder's own.
#include <QApplication>
#include <QMenu>
#include <QPixmap>
#include <QSystemTrayIcon>

int main(int argc, char** argv) {
    QApplication app(argc, argv);
    QPixmap picture(22, 22);
    picture.fill(QColor(0x2a, 0x9d, 0x8f));
    QMenu menu;
    menu.addAction(QStringLiteral("&About..."));
    menu.addSeparator();
    QObject::connect(menu.addAction(QStringLiteral("&Quit")), &QAction::triggered, &app, &QApplication::quit);
    QSystemTrayIcon icon{QIcon(picture)};
    icon.setToolTip(QStringLiteral("Bare tray"));
    icon.setContextMenu(&menu);
    icon.show();
    return app.exec();
}
