// The real regedit and tarvo programs of the program folder, run as a user would, each with its own
// settings folder.
#include "platform/linux/FileRegistryStore.h"
#include "settings/LoadAndCommit.h"
#include "support/Programs.h"

#include <QTemporaryDir>
#include <QtTest>

namespace {

const QByteArray kRoot = "HKEY_CURRENT_USER\\Software\\VB and VBA Program Settings\\Tarvo Micropause";

// A .reg file's text with ROOT standing for our key.
QByteArray reg(const char* text) {
    return QByteArray(text).replace("ROOT", kRoot);
}

} // namespace

class TestRegedit : public QObject {
    Q_OBJECT

private:
    std::unique_ptr<QTemporaryDir> dir_;

    QString storePath() const { return dir_->filePath("config/tarvo/registry.reg"); }
    QString file(const QString& name) const { return dir_->filePath(name); }
    void write(const QString& name, const QByteArray& bytes) const { QVERIFY(writeFile(file(name), bytes)); }
    ProgramRun run(const QString& program, const QStringList& args) const {
        return runProgram(program, args, dir_->path());
    }
    ProgramRun regedit(const QStringList& args) const { return run("regedit", args); }

private slots:
    void init() { dir_ = std::make_unique<QTemporaryDir>(); }

    // Only our keys are imported, typed values skipped and reported, deletions applied; an export is the
    // store file itself (escapes, line breaks, empty keys and values, other scripts and all), and
    // importing it gives the same store.
    void importAndExport() {
        write("in.reg",
              reg("REGEDIT4\r\n[ROOT\\Micropause]\r\n\"InterruptFor\"=\"20\"\r\n"
                  "\"Warning\"=\"a \\\\ b \\\"c\\\" && d\\nTwo \xe4\"\r\n" // Latin-1 a-umlaut
                  "[HKEY_LOCAL_MACHINE\\Software\\Other]\r\n\"x\"=\"y\"\r\n[ROOT\\Empty]\r\n"
                  "[ROOT\\Old\\Sub]\r\n[ROOT\\Scheme \"\xe4\" x\\y [b]]\r\n\"1d\"=\"Roll\"\r\n"
                  "[ROOT\\Options]\r\n\"tray\"=\"\"\r\n\"gone\"=\"5\"\r\n\"n\"=dword:00000001\r\n"));
        ProgramRun r = regedit({file("in.reg")});
        QCOMPARE(r.status, 0);
        QVERIFY2(r.out.contains("Skipped [HKEY_LOCAL_MACHINE\\Software\\Other]"), qPrintable(r.out));
        QVERIFY(r.out.contains("Skipped value \"n\""));
        write("more.reg", reg("REGEDIT4\n[ROOT\\Options]\n\"GONE\"=-\n[-ROOT\\old]\n"
                              "[ROOT\\Scheme*\xc3\x9cn\xc3\xaf]\n\"1d\"=\"Roll \xe2\x9c\x93\"\n"));
        r = regedit({"/S", file("more.reg")});
        QVERIFY2(r.status == 0 && r.out.isEmpty() && r.err.isEmpty(), "/s is silent");
        const QByteArray stored = readFile(storePath());
        QVERIFY(!stored.contains("HKEY_LOCAL_MACHINE") && !stored.contains("\"n\"") &&
                !stored.contains("gone"));
        QVERIFY(!stored.contains("\\Old") &&
                stored.contains("Scheme*\xc3\x9cn\xc3\xaf]\n\"1d\"=\"Roll \xe2\x9c\x93\""));
        QVERIFY(stored.contains("\"Warning\"=\"a \\\\ b \\\"c\\\" && d\\nTwo \xc3\xa4\"")); // in UTF-8

        QCOMPARE(regedit({"/e", file("all.reg")}).status, 0);
        QCOMPARE(readFile(file("all.reg")), stored);
        QVERIFY(QFile::remove(storePath()));
        QCOMPARE(regedit({file("all.reg")}).status, 0);
        QCOMPARE(readFile(storePath()), stored);
        // One key and the keys below it.
        QCOMPARE(
            regedit({"-E", file("one.reg"), QString::fromUtf8(kRoot + "\\SCHEME \"\xc3\xa4\" X")}).status, 0);
        const QByteArray one = readFile(file("one.reg"));
        QVERIFY(one.contains("x\\y [b]]") && !one.contains("\\Options]"));
        QCOMPARE(regedit({"/e", file("no.reg"), "HKEY_CURRENT_USER\\Software"}).status, 1);
    }

    void aFileThatFailsImportsNothing() {
        write("good.reg", reg("REGEDIT4\n[ROOT\\Options]\n\"tray\"=\"0\"\n"));
        QCOMPARE(regedit({file("good.reg")}).status, 0);
        const QByteArray before = readFile(storePath());

        write("bad.reg", reg("REGEDIT4\n[ROOT\\Options]\n\"tray\"=\"7\"\n\"AppPath\"=\"/unterminated\n"));
        ProgramRun r = regedit({file("bad.reg")});
        QCOMPARE(r.status, 1);
        QVERIFY2(r.err.contains(file("bad.reg") + ", line 4"), qPrintable(r.err));
        QCOMPARE(readFile(storePath()), before); // not even the good line before the error

        r = regedit({"/s", file("missing.reg")});
        QVERIFY(r.status == 1 && r.err.isEmpty());
        r = regedit({file("missing.reg")});
        QVERIFY(r.status == 1 && r.err.contains("cannot read"));
        QCOMPARE(regedit({}).status, 2);
        QCOMPARE(regedit({"/x", file("good.reg")}).status, 2);
    }

    void shippedDefaultsImportAsTheDefaults() {
        QCOMPARE(regedit({"/s", TARVO_PROGRAM_DIR "/tarvo32.reg"}).status, 0);
        tarvo::FileRegistryStore store(storePath());
        tarvo::SettingsStore settings(store);
        tarvo::SettingsRecord record;
        tarvo::loadAllSettings(settings, record);
        tarvo::SettingsRecord expected;
        expected.Scheme = "*Medium Break"; // the built-in name, as the scheme list spells it
        QVERIFY(record == expected);
        QCOMPARE(store.value("Exercise", "ProcrastinateM"), std::optional<QString>("5"));
        QCOMPARE(store.value("Micropause", "DisableEsc2"), std::optional<QString>("0"));
        // Start-up writes the housekeeping keys before the import runs; the import must not touch them.
        QVERIFY(store.keys("Options").isEmpty());
    }

    // The real program reports a bad setting on standard error and ends; what it wrote before the
    // error is the start-up tests' concern.
    void tarvoReportsABadSettingAndEnds() {
        QVERIFY(run("tarvo", {"--version"}).out.startsWith("Tarvo Micropause "));
        write("bad.reg", reg("REGEDIT4\n[ROOT\\Micropause]\n\"InterruptFor\"=\"abc\"\n"
                             "[ROOT\\Options]\n\"Initialised\"=\"1\"\n"));
        QCOMPARE(regedit({"/s", file("bad.reg")}).status, 0);
        const ProgramRun r = run("tarvo", {});
        QCOMPARE(r.status, 1);
        QVERIFY2(r.err.contains("Run-time error '13':\n\nType mismatch"), qPrintable(r.err));
        QVERIFY(r.err.contains("\"InterruptFor\" in section \"Micropause\" holds \"abc\""));
    }
};

QTEST_GUILESS_MAIN(TestRegedit)
#include "tst_regedit.moc"
