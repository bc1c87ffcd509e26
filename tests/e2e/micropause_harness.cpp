// Runs one real micropause on the real platform (X server, window manager, timers), for the
// end-to-end test. Prints what happens on standard output, one line per event.
//   micropause_harness [--seconds N] [--blank 0|1] [--screenshot FILE --at MS]
//   micropause_harness --busy-window     a plain window that stands for the user's work
#include "engine/AppContext.h"
#include "engine/BreakEngine.h"
#include "micropause/WarningSounds.h"
#include "micropause/frmTarvo.h"
#include "platform/fake/FakeActivityMonitor.h"
#include "platform/fake/MemoryRegistryStore.h"
#include "platform/linux/LinuxPlatform.h"
#include "settings/SettingsRecord.h"

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

// The real warnings, announced on standard output as they sound.
struct AnnouncedWarnings : Warnings {
    WarningSounds& sounds;
    explicit AnnouncedWarnings(WarningSounds& s)
        : sounds(s) {}
    void announce(void (WarningSounds::*warning)(), const char* what) {
        (sounds.*warning)();
        say(QLatin1String(what));
    }
    void AudibleWarningPre() override { announce(&WarningSounds::AudibleWarningPre, "pre-warning"); }
    void AudibleWarning() override { announce(&WarningSounds::AudibleWarning, "warning"); }
    void AudibleWarningX() override { announce(&WarningSounds::AudibleWarningX, "exercise warning"); }
    void AudibleNotification() override { announce(&WarningSounds::AudibleNotification, "notification"); }
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

    // The real platform, but for the settings, which stay in memory, and the activity, which never
    // comes: the break under test is started by hand.
    LinuxPlatform platform;
    MemoryRegistryStore store;
    FakeActivityMonitor monitor;
    AppContext ctx(store, platform.clock(), platform.timers(), monitor, platform.sound(), platform.messages(),
                   platform.programFolder());
    SettingsRecord& settings = ctx.record;
    settings.InterruptFor = args.value(QStringLiteral("seconds")).toInt();
    settings.Blank = args.value(QStringLiteral("blank")).toInt();
    const SchedulerState& state = ctx.schedule;
    WarningSounds sounds(settings, platform.sound(), platform.programFolder());
    AnnouncedWarnings warnings(sounds);
    frmTarvo form;
    BreakEngine engine(ctx, form, warnings);
    form.attach(engine);
    form.setWarning(settings.Warning);
    engine.scheduler().SetTimers();

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
    // The warning sounds before the screen shows, so the screenshot is timed from the start of the break.
    const QString shot = args.value(QStringLiteral("screenshot"));
    const int shotAt = args.value(QStringLiteral("at")).toInt();
    QTimer::singleShot(300, &app, [&] {
        engine.micropause().TarvoMicropause();
        say(QStringLiteral("started"));
        watch.start(20);
        if (shot.isEmpty())
            return;
        QTimer::singleShot(shotAt, &app, [&] {
            QScreen* screen = QGuiApplication::primaryScreen();
            const QRect all = screen->virtualGeometry();
            screen->grabWindow(0, all.x(), all.y(), all.width(), all.height()).save(shot);
            say(QStringLiteral("screenshot ") + shot);
        });
    });
    return app.exec();
}
