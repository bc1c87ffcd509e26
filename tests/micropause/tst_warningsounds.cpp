// The warnings' beep patterns and sound files, as a recording player hears them on its simulated clock.
#include "micropause/WarningSounds.h"
#include "platform/fake/RecordingSoundPlayer.h"
#include "settings/SettingsRecord.h"

#include <QtTest>

using namespace tarvo;

namespace {

const QString kFolder = "/opt/tarvo";

} // namespace

class TestWarningSounds : public QObject {
    Q_OBJECT

private slots:
    // Without files, each warning's beeps and pauses; with files, the file in the warning's own mode
    // and nothing else. The notification has no file and beeps whatever the others have.
    void beepsOrFiles() {
        // The warning, the moments of its beeps, how long it holds the caller, and what it plays instead.
        const std::tuple<void (Warnings::*)(), const char*, int, const char*> cases[] = {
            {&Warnings::AudibleWarningPre, "0 250 500 750", 1000, "sync /snd/pre.wav @0"},
            {&Warnings::AudibleWarning, "0 166 1165 2164", 4162, "sync /snd/start.wav @0"},
            {&Warnings::AudibleWarningX, "0 166 332 498 1497 2496 3495", 5493, "async /snd/exercise.wav @0"},
            {&Warnings::AudibleNotification, "0", 0, "beep @0"}};
        for (const auto& [warning, beeps, lasts, withFiles] : cases) {
            SettingsRecord settings;
            RecordingSoundPlayer player;
            WarningSounds warnings(settings, player, kFolder);
            (warnings.*warning)();
            QCOMPARE(player.log().join(u' ').remove("beep @"), QLatin1String(beeps));
            QCOMPARE(player.elapsed(), lasts);

            settings.WarningSoundPre = "/snd/pre.wav";
            settings.WarningSound = "/snd/start.wav";
            settings.WarningSoundX = "/snd/exercise.wav";
            RecordingSoundPlayer filePlayer;
            WarningSounds withFile(settings, filePlayer, kFolder);
            (withFile.*warning)();
            QCOMPARE(filePlayer.log(), QStringList{QLatin1String(withFiles)});
            QCOMPARE(filePlayer.elapsed(), 0);
        }
    }

    // A bare name (even a blank) is looked up in the program folder; a path with a folder is taken as
    // it is, a "\\" being a folder separator too and a drive letter the root.
    void whereAStoredPathPoints() {
        const std::pair<const char*, const char*> cases[] = {
            {"ding.wav", "/opt/tarvo/ding.wav"},        {"/home/u/ding.wav", "/home/u/ding.wav"},
            {"snd/ding.wav", "snd/ding.wav"},           {" ", "/opt/tarvo/ "},
            {"C:\\Media\\ding.wav", "/Media/ding.wav"}, {"sub\\beep.wav", "sub/beep.wav"},
            {"C:ding.wav", "/opt/tarvo/C:ding.wav"},
        };
        for (const auto& [stored, played] : cases) {
            SettingsRecord settings;
            settings.WarningSound = QString::fromLatin1(stored);
            RecordingSoundPlayer player;
            WarningSounds(settings, player, kFolder).AudibleWarning();
            QCOMPARE(player.log(), QStringList{QStringLiteral("sync %1 @0").arg(QLatin1String(played))});
        }
    }
};

QTEST_GUILESS_MAIN(TestWarningSounds)
#include "tst_warningsounds.moc"
