// The settings layer: a fresh profile's defaults, the order of reads and writes, the Esc merge, and
// stored text that is not a number.
#include "core/RuntimeError.h"
#include "platform/fake/MemoryRegistryStore.h"
#include "shell/FatalError.h"
#include "shell/SettingsKeys.h"
#include "shell/SettingsLoader.h"

#include <QtTest>

using namespace tarvo;

class TestSettings : public QObject {
    Q_OBJECT

private slots:
    void freshProfileLoadsTheDefaultsInOrder() {
        MemoryRegistryStore store;
        SettingsStore settings(store);
        SettingsRecord record;
        record.InterruptFor = 99; // whatever the record held before is replaced
        record.Monitor = {0, 0};
        QStringList steps;
        SettingsLoadSteps hooks;
        hooks.loadScheme = [&](const QString& s) {
            steps << QStringLiteral("scheme %1 after %2 reads").arg(s).arg(store.reads().size());
        };
        hooks.showWarning = [&](const QString& w) {
            steps << QStringLiteral("warning %1 after %2 reads").arg(w).arg(store.reads().size());
        };
        hooks.monitorSource = [&](int source, std::int32_t on) {
            steps << QStringLiteral("monitor %1=%2").arg(source).arg(on);
        };
        loadAllSettings(settings, record, hooks);

        QVERIFY(record == SettingsRecord{});

        const QStringList expectedReads{
            "Exercise/Scheme",           "Exercise/EveryM",         "Exercise/AudibleX",
            "Exercise/WarningSoundX",    "Exercise/BlankX",         "Exercise/ViewAm",
            "Exercise/xStart",           "Exercise/NumAtaTime",     "Micropause/InterruptFor",
            "Micropause/InterruptEvery", "Micropause/IntelliReset", "Micropause/Audible",
            "Micropause/WarningSound",   "Micropause/AudiblePre",   "Micropause/WarningSoundPre",
            "Micropause/DisableEsc",     "Micropause/DisableEsc2",  "Micropause/Blank",
            "Micropause/Warning",        "Micropause/Monitor0",     "Micropause/Monitor1"};
        QCOMPARE(store.reads(), expectedReads);
        QCOMPARE(steps, (QStringList{"scheme *Medium break after 1 reads",
                                     "warning Hands off Keyboard && Mouse, look away, relax. after 19 reads",
                                     "monitor 0=1", "monitor 1=1"}));
        QVERIFY2(store.writes().empty(), "loading never writes");
    }

    void storedValuesAndTheEscMerge() {
        MemoryRegistryStore store;
        auto& m = store.model();
        m.setValue(keys::Micropause, "DISABLEESC", "0");
        m.setValue(keys::Micropause, keys::DisableEsc2, "1");
        m.setValue(keys::Micropause, keys::InterruptEvery, "2.5");
        m.setValue(keys::Micropause, keys::monitor(0), "0");
        SettingsStore settings(store);
        SettingsRecord record;
        loadAllSettings(settings, record);
        QCOMPARE(record.DisableEsc, 1);
        QCOMPARE(record.InterruptEvery, 2); // numbers are read as the conversions read them
        QCOMPARE(record.Monitor, (std::array<std::int32_t, 2>{0, 1}));

        // Apply with the Esc box cleared writes only "DisableEsc"; the outside switch still forbids Esc.
        record.DisableEsc = 0;
        commitSettings(settings, record);
        QCOMPARE(m.value(keys::Micropause, keys::DisableEsc), std::optional<QString>("0"));
        QCOMPARE(m.value(keys::Micropause, keys::DisableEsc2), std::optional<QString>("1"));
        SettingsRecord again;
        loadAllSettings(settings, again);
        QCOMPARE(again.DisableEsc, 1);
        QCOMPARE(m.keys(keys::Micropause).first(), "DISABLEESC"); // first-written case kept
    }

    void commitWritesEveryKeyInOrder() {
        MemoryRegistryStore store;
        SettingsStore settings(store);
        SettingsRecord r;
        r.InterruptFor = 30;
        r.Audible = 5; // a check box only knows checked and cleared
        r.xStart = -1;
        r.Warning = "Rest && breathe";
        int batchDepthDuringSave = -1;
        size_t writesBeforeSave = 0;
        commitSettings(settings, r, [&] {
            batchDepthDuringSave = store.batchDepth();
            writesBeforeSave = store.writes().size();
            store.setValue("Scheme*Medium break", "Num", "0");
        });
        QStringList written;
        for (const auto& w : store.writes())
            written << w.section + QLatin1Char('/') + w.key + QLatin1Char('=') + w.text;
        const QStringList expected{"Micropause/InterruptFor=30",
                                   "Micropause/InterruptEvery=4",
                                   "Micropause/Audible=1",
                                   "Micropause/WarningSound=",
                                   "Micropause/AudiblePre=1",
                                   "Micropause/WarningSoundPre=",
                                   "Micropause/Blank=1",
                                   "Micropause/Warning=Rest && breathe",
                                   "Micropause/DisableEsc=0",
                                   "Micropause/IntelliReset=1",
                                   "Micropause/Monitor0=1",
                                   "Micropause/Monitor1=1",
                                   "Exercise/AudibleX=1",
                                   "Exercise/EveryM=50",
                                   "Exercise/WarningSoundX=",
                                   "Exercise/BlankX=1",
                                   "Exercise/ViewAm=0",
                                   "Scheme*Medium break/Num=0",
                                   "Exercise/Scheme=*Medium break",
                                   "Exercise/xStart=-1",
                                   "Exercise/NumAtaTime=6"};
        QCOMPARE(written, expected);
        QCOMPARE(writesBeforeSave, size_t(17));
        QCOMPARE(batchDepthDuringSave, 1);
        QCOMPARE(store.batchesCompleted(), 1); // one durable update for the whole Apply
    }

    void badNumbersNameTheSetting() {
        for (const auto& [text, error] :
             {std::pair{"abc", vberr::TypeMismatch}, std::pair{"99999999999", vberr::Overflow}}) {
            MemoryRegistryStore store;
            store.model().setValue(keys::Micropause, keys::InterruptEvery, QLatin1String(text));
            SettingsStore settings(store);
            SettingsRecord record;
            record.InterruptFor = 1;
            try {
                loadAllSettings(settings, record);
                QFAIL("the load went on past a bad number");
            } catch (const RuntimeError& e) {
                QCOMPARE(e.number(), error);
                const QString report = fatalErrorText(e);
                QVERIFY2(report.contains(
                             QStringLiteral("\"InterruptEvery\" in section \"Micropause\" holds \"%1\"")
                                 .arg(QLatin1String(text))),
                         qPrintable(report));
            }
            QCOMPARE(record.InterruptFor, 15);                           // read before the bad key
            QCOMPARE(store.reads().last(), "Micropause/InterruptEvery"); // nothing after it
        }
    }

    void fatalTextsForStoreAndOtherErrors() {
        QCOMPARE(fatalErrorText(StoreError("The settings file is damaged")), "The settings file is damaged");
        QVERIFY(fatalErrorText(std::runtime_error("boom")).contains("boom"));
    }
};

QTEST_GUILESS_MAIN(TestSettings)
#include "tst_settings.moc"
