// The real regedit and tarvo programs of the program folder, run as a user would, each with its own
// settings folder.
#include "platform/linux/FileRegistryStore.h"
#include "settings/LoadAndCommit.h"
#include "support/Programs.h"

#include <QStringEncoder>
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

    void importsOnlyOurKeysFromBothFormats() {
        write("v4.reg", reg("REGEDIT4\r\n\r\n[ROOT\\Micropause]\r\n\"InterruptFor\"=\"20\"\r\n"
                            "\"Warning\"=\"Pause \\\"now\\\" \xe4\"\r\n" // Latin-1 a-umlaut
                            "[HKEY_LOCAL_MACHINE\\Software\\Other]\r\n\"x\"=\"y\"\r\n"
                            "[ROOT\\Options]\r\n\"tray\"=\"5\"\r\n\"n\"=dword:00000001\r\n"));
        ProgramRun r = regedit({file("v4.reg")});
        QCOMPARE(r.status, 0);
        QVERIFY2(r.out.contains("Skipped [HKEY_LOCAL_MACHINE\\Software\\Other]"), qPrintable(r.out));
        QVERIFY(r.out.contains("Skipped value \"n\""));
        const QByteArray stored = readFile(storePath());
        QVERIFY(!stored.contains("HKEY_LOCAL_MACHINE") && !stored.contains("\"n\""));
        QVERIFY(stored.contains("\"Warning\"=\"Pause \\\"now\\\" \xc3\xa4\"")); // kept as UTF-8

        // A version 5 file in UTF-16 deletes a value and a key (with the keys below it).
        const QString v5 =
            QString::fromUtf8(reg("Windows Registry Editor Version 5.00\r\n\r\n[ROOT\\Options]\r\n"
                                  "\"TRAY\"=-\r\n[-ROOT\\micropause]\r\n[ROOT\\Scheme*Ünï]\r\n"
                                  "\"1d\"=\"Roll ✓\"\r\n"));
        QStringEncoder utf16(QStringEncoder::Utf16LE, QStringEncoder::Flag::WriteBom);
        write("v5.reg", utf16.encode(v5));
        r = regedit({"/S", file("v5.reg")});
        QCOMPARE(r.status, 0);
        QVERIFY2(r.out.isEmpty() && r.err.isEmpty(), "/s is silent");
        const QString after = QString::fromUtf8(readFile(storePath()));
        QVERIFY(!after.contains("tray") && !after.contains("\\Micropause]"));
        QVERIFY(after.contains("Scheme*Ünï]\n\"1d\"=\"Roll ✓\""));
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

    // What the store writes reads back the same, escapes, line breaks, empty keys and values and other
    // scripts included: an export is the store file itself, and importing it gives the same store.
    void exportRoundTrip() {
        write("in.reg", reg("REGEDIT4\n[ROOT\\Micropause]\n\"Warning\"=\"a \\\\ b \\\"c\\\" && d\\nTwo\"\n"
                            "[ROOT\\Scheme \"\xc3\xa4\" x\\y [b]]\n\"1d\"=\"\xc3\x9cn\xc3\xaf"
                            "code \xe2\x9c\x93\"\n"
                            "[ROOT\\Empty]\n[ROOT\\Options]\n\"tray\"=\"\"\n"));
        QCOMPARE(regedit({file("in.reg")}).status, 0);
        const QByteArray original = readFile(storePath());
        QVERIFY(original.contains("\"Warning\"=\"a \\\\ b \\\"c\\\" && d\\nTwo\""));
        QCOMPARE(regedit({"/e", file("all.reg")}).status, 0);
        QCOMPARE(readFile(file("all.reg")), original);

        QVERIFY(QFile::remove(storePath()));
        QCOMPARE(regedit({file("all.reg")}).status, 0);
        QCOMPARE(readFile(storePath()), original);

        // One key and the keys below it.
        QCOMPARE(
            regedit({"-E", file("one.reg"), QString::fromUtf8(kRoot + "\\SCHEME \"\xc3\xa4\" X")}).status, 0);
        const QByteArray one = readFile(file("one.reg"));
        QVERIFY(one.contains("x\\y [b]]") && !one.contains("\\Micropause]"));
        QCOMPARE(regedit({"/e", file("no.reg"), "HKEY_CURRENT_USER\\Software"}).status, 1);
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
