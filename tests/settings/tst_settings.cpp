// The settings layer: a fresh profile's defaults, the order of reads with start-up's steps among them,
// what a commit writes, the Esc merge, and stored text that is not a number.
#include "core/RuntimeError.h"
#include "platform/fake/MemoryRegistryStore.h"
#include "settings/LoadAndCommit.h"
#include "settings/Options.h"
#include "settings/SettingsPort.h"
#include "support/Raised.h"

#include <QtTest>

using namespace tarvo;

namespace {

// Notes each step with the number of store accesses before it.
struct StepLog : SettingsPort {
    MemoryRegistryStore& store;
    QStringList steps;
    explicit StepLog(MemoryRegistryStore& s)
        : store(s) {}
    void schemeRead(const QString& s) override { note("scheme " + s); }
    void warningRead(const QString& w) override { note("warning " + w); }
    void monitorRead(int channel, std::int32_t on) override {
        note(QStringLiteral("monitor %1=%2").arg(channel).arg(on));
    }
    void note(const QString& what) { steps << QStringLiteral("%1 @%2").arg(what).arg(store.reads().size()); }
};

} // namespace

class TestSettings : public QObject {
    Q_OBJECT

private slots:
    void freshProfileLoadsTheDefaultsInOrder() {
        MemoryRegistryStore store;
        SettingsStore settings(store);
        SettingsRecord r;
        r.InterruptFor = 99; // whatever the record held before is replaced
        r.Monitor = {0, 0};
        StepLog log(store);
        loadAllSettings(settings, r, &log);

        QVERIFY(r.Scheme == "*Medium break" && r.EveryM == 50 && r.AudibleX == 1 &&
                r.WarningSoundX.isEmpty());
        QVERIFY(r.BlankX == 1 && r.ViewAm == 0 && r.xStart == 0 && r.NumAtaTime == 6);
        QVERIFY(r.InterruptFor == 15 && r.InterruptEvery == 4 && r.IntelliReset == 1 && r.Audible == 1);
        QVERIFY(r.WarningSound.isEmpty() && r.AudiblePre == 1 && r.WarningSoundPre.isEmpty());
        QVERIFY(r.DisableEsc == 0 && r.Blank == 1 && (r.Monitor == std::array<std::int32_t, 2>{1, 1}));
        QCOMPARE(r.Warning, "Hands off Keyboard && Mouse, look away, relax.");

        QCOMPARE(store.reads().join(' ').remove("Exercise/").remove("Micropause/"),
                 "Scheme EveryM AudibleX WarningSoundX BlankX ViewAm xStart NumAtaTime InterruptFor "
                 "InterruptEvery IntelliReset Audible WarningSound AudiblePre WarningSoundPre DisableEsc "
                 "DisableEsc2 Blank Warning Monitor0 Monitor1 Presence/LockPause Presence/HoldFullScreen "
                 "Presence/HoldDoNotDisturb Presence/HoldInhibited Presence/HoldLimit");
        QVERIFY(store.reads().first().startsWith("Exercise/") && store.reads()[8].startsWith("Micropause/"));
        QCOMPARE(log.steps, (QStringList{"scheme *Medium break @1",
                                         "warning Hands off Keyboard && Mouse, look away, relax. @19",
                                         "monitor 0=1 @20", "monitor 1=1 @21"}));
        QVERIFY2(store.writes().empty(), "loading never writes");
    }

    void storedValuesAndTheEscMerge() {
        MemoryRegistryStore store;
        auto& m = store.model();
        m.setValue("Micropause", "DISABLEESC", "0");
        m.setValue("Micropause", "DisableEsc2", "1");
        m.setValue("Micropause", "InterruptEvery", "2.5");
        m.setValue("Micropause", "Monitor0", "0");
        SettingsStore settings(store);
        SettingsRecord record;
        loadAllSettings(settings, record);
        QCOMPARE(record.DisableEsc, 1);
        QCOMPARE(record.InterruptEvery, 2); // numbers are read as the conversions read them
        QCOMPARE(record.Monitor, (std::array<std::int32_t, 2>{0, 1}));

        // Apply with the Esc box cleared writes only "DisableEsc"; the outside switch still forbids Esc.
        // A check box's number is written as checked or cleared; one commit is one durable update (the
        // order of its writes: tst_applyoptions).
        record.DisableEsc = 0;
        record.Audible = 5;
        commitSettings(settings, record);
        QCOMPARE(store.batchesCompleted(), 1);
        QCOMPARE(m.value("Micropause", "Audible"), std::optional<QString>("1"));
        QCOMPARE(m.value("Micropause", "DisableEsc"), std::optional<QString>("0"));
        QCOMPARE(m.value("Micropause", "DisableEsc2"), std::optional<QString>("1")); // so Esc stays forbidden
        QCOMPARE(m.keys("Micropause").first(), "DISABLEESC"); // first-written case kept
    }

    void badNumbersNameTheSetting() {
        for (const auto& [text, error] :
             {std::pair{"abc", vberr::TypeMismatch}, std::pair{"99999999999", vberr::Overflow}}) {
            MemoryRegistryStore store;
            store.model().setValue("Micropause", "InterruptEvery", QLatin1String(text));
            SettingsStore settings(store);
            SettingsRecord record;
            record.InterruptFor = 1;
            const auto e = raised<RuntimeError>([&] { loadAllSettings(settings, record); });
            QVERIFY(e && e->number() == error);
            QVERIFY2(
                e->report().contains(
                    QStringLiteral("\"InterruptEvery\" in section \"Micropause\" holds \"%1\"").arg(text)),
                qPrintable(e->report()));
            QCOMPARE(record.InterruptFor, 15);                           // read before the bad key
            QCOMPARE(store.reads().last(), "Micropause/InterruptEvery"); // nothing after it
        }
    }
};

QTEST_GUILESS_MAIN(TestSettings)
#include "tst_settings.moc"
