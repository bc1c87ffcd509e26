// Runs one real micropause on the real platform (X server, window manager, timers), for the
// end-to-end test. Prints what happens on standard output, one line per event.
//   micropause_harness [--seconds N] [--blank 0|1] [--screenshot FILE --at MS]
//   micropause_harness --busy-window     a plain window that stands for the user's work
#include "FakeActivityMonitor.h"
#include "QtTimer.h"
#include "SchedulerState.h"
#include "SettingsRecord.h"
#include "SystemClock.h"
#include "Warnings.h"
#include "frmTarvo.h"

#include <QApplication>
#include <QCommandLineParser>
#include <QLabel>
#include <QScreen>
#include <QTimer>

#include <cstdio>

using namespace tarvo;

namespace {

void say(const QString& line) {
    std::printf("%s\n", qPrintable(line));
    std::fflush(stdout);
}

struct PrintingWarnings : Warnings {
    void AudibleWarningPre() override { say(QStringLiteral("pre-warning")); }
    void AudibleWarning() override { say(QStringLiteral("warning")); }
    void AudibleWarningX() override { say(QStringLiteral("exercise warning")); }
    void AudibleNotification() override { say(QStringLiteral("notification")); }
};

} // namespace

int main(int argc, char** argv) {
    QApplication app(argc, argv);
    QCommandLineParser args;
    args.addOptions({{QStringLiteral("seconds"), QStringLiteral("break length"), QStringLiteral("n"),
                      QStringLiteral("3")},
                     {QStringLiteral("blank"), QStringLiteral("blank the screen"), QStringLiteral("b"),
                      QStringLiteral("1")},
                     {QStringLiteral("screenshot"), QStringLiteral("png to write"), QStringLiteral("file")},
                     {QStringLiteral("at"), QStringLiteral("ms into the break"), QStringLiteral("ms"),
                      QStringLiteral("1000")},
                     {QStringLiteral("busy-window"), QStringLiteral("show a stand-in for the user's work")}});
    args.process(app);

    if (args.isSet(QStringLiteral("busy-window"))) {
        QLabel work(QStringLiteral("Busy work"));
        work.setWindowTitle(QStringLiteral("Busy work"));
        work.resize(400, 200);
        work.show();
        return app.exec();
    }

    SettingsRecord settings;
    settings.InterruptFor = args.value(QStringLiteral("seconds")).toInt();
    settings.Blank = args.value(QStringLiteral("blank")).toInt();
    SchedulerState state;
    SystemClock clock;
    FakeActivityMonitor monitor;
    QtTimerFactory timers;
    PrintingWarnings warnings;
    frmTarvo form(settings, state, clock, monitor, timers, warnings);
    form.setWarning(settings.Warning);
    form.scheduler().SetTimers();

    for (QScreen* s : QGuiApplication::screens())
        say(QStringLiteral("screen %1 %2x%3+%4+%5")
                .arg(s->name())
                .arg(s->geometry().width())
                .arg(s->geometry().height())
                .arg(s->geometry().x())
                .arg(s->geometry().y()));

    // Polls the break's state: the harness is a test program and may use plain Qt timers.
    QTimer watch;
    QObject::connect(&watch, &QTimer::timeout, &app, [&] {
        if (!state.InMicropause) {
            say(QStringLiteral("ended"));
            app.quit();
        }
    });
    QTimer::singleShot(300, &app, [&] {
        form.TarvoMicropause();
        say(QStringLiteral("started"));
        watch.start(20);
    });
    const QString shot = args.value(QStringLiteral("screenshot"));
    if (!shot.isEmpty()) {
        QTimer::singleShot(300 + args.value(QStringLiteral("at")).toInt(), &app, [&] {
            QScreen* screen = QGuiApplication::primaryScreen();
            const QRect all = screen->virtualGeometry();
            screen->grabWindow(0, all.x(), all.y(), all.width(), all.height()).save(shot);
            say(QStringLiteral("screenshot ") + shot);
        });
    }
    return app.exec();
}
