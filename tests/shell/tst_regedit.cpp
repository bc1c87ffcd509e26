// The real regedit and tarvo programs of the program folder, run as a user would, each with its own
// settings folder.
#include "FileRegistryStore.h"
#include "SettingsKeys.h"
#include "SettingsLoader.h"

#include <QProcess>
#include <QStringEncoder>
#include <QTemporaryDir>
#include <QtTest>

namespace {

const QByteArray kRoot = "HKEY_CURRENT_USER\\Software\\VB and VBA Program Settings\\Tarvo Micropause";

struct Run {
    int status;
    QString out, err;
};

} // namespace

class TestRegedit : public QObject {
    Q_OBJECT

private:
    std::unique_ptr<QTemporaryDir> dir_;

    QString storePath() const { return dir_->filePath(QStringLiteral("config/tarvo/registry.reg")); }
    QString file(const QString& name) const { return dir_->filePath(name); }

    void write(const QString& name, const QByteArray& bytes) const {
        QFile f(file(name));
        QVERIFY(f.open(QIODevice::WriteOnly));
        f.write(bytes);
    }
    QByteArray read(const QString& path) const {
        QFile f(path);
        return f.open(QIODevice::ReadOnly) ? f.readAll() : QByteArray();
    }

    Run run(const QString& program, const QStringList& args) const {
        QProcess p;
        QProcessEnvironment env = QProcessEnvironment::systemEnvironment();
        env.insert(QStringLiteral("XDG_CONFIG_HOME"), dir_->filePath(QStringLiteral("config")));
        env.insert(QStringLiteral("QT_QPA_PLATFORM"), QStringLiteral("offscreen"));
        env.insert(QStringLiteral("XDG_RUNTIME_DIR"), dir_->path()); // a private instance lock
        p.setProcessEnvironment(env);
        p.start(QStringLiteral(TARVO_PROGRAM_DIR "/") + program, args);
        if (!p.waitForFinished(30000))
            return {-1, {}, {}};
        return {p.exitStatus() == QProcess::NormalExit ? p.exitCode() : -1,
                QString::fromUtf8(p.readAllStandardOutput()), QString::fromUtf8(p.readAllStandardError())};
    }

private slots:
    void init() { dir_ = std::make_unique<QTemporaryDir>(); }

    void importsOnlyOurKeysFromBothFormats() {
        write(QStringLiteral("v4.reg"), "REGEDIT4\r\n\r\n[" + kRoot +
                                            "\\Micropause]\r\n\"InterruptFor\"=\"20\"\r\n"
                                            "\"Warning\"=\"Pause \\\"now\\\" \xe4\"\r\n" // Latin-1 a-umlaut
                                            "[HKEY_LOCAL_MACHINE\\Software\\Other]\r\n\"x\"=\"y\"\r\n"
                                            "[" +
                                            kRoot +
                                            "\\Options]\r\n\"tray\"=\"5\"\r\n\"n\"=dword:00000001\r\n");
        Run r = run(QStringLiteral("regedit"), {file(QStringLiteral("v4.reg"))});
        QCOMPARE(r.status, 0);
        QVERIFY2(r.out.contains(QStringLiteral("Skipped [HKEY_LOCAL_MACHINE\\Software\\Other]")),
                 qPrintable(r.out));
        QVERIFY(r.out.contains(QStringLiteral("Skipped value \"n\"")));
        const QByteArray stored = read(storePath());
        QVERIFY(!stored.contains("HKEY_LOCAL_MACHINE") && !stored.contains("\"n\""));
        QVERIFY(stored.contains("\"Warning\"=\"Pause \\\"now\\\" \xc3\xa4\"")); // kept as UTF-8

        // A version 5 file in UTF-16 deletes a value and a key (with the keys below it).
        const QString v5 =
            QStringLiteral("Windows Registry Editor Version 5.00\r\n\r\n[%1\\Options]\r\n\"TRAY\"=-\r\n"
                           "[-%1\\micropause]\r\n[%1\\Scheme*Ünï]\r\n\"1d\"=\"Roll ✓\"\r\n")
                .arg(QString::fromLatin1(kRoot));
        QStringEncoder utf16(QStringEncoder::Utf16LE, QStringEncoder::Flag::WriteBom);
        write(QStringLiteral("v5.reg"), utf16.encode(v5));
        r = run(QStringLiteral("regedit"), {QStringLiteral("/S"), file(QStringLiteral("v5.reg"))});
        QCOMPARE(r.status, 0);
        QVERIFY2(r.out.isEmpty() && r.err.isEmpty(), "/s is silent");
        const QString after = QString::fromUtf8(read(storePath()));
        QVERIFY(!after.contains(QStringLiteral("tray")) && !after.contains(QStringLiteral("\\Micropause]")));
        QVERIFY(after.contains(QStringLiteral("Scheme*Ünï]\n\"1d\"=\"Roll ✓\"")));
    }

    void aFileThatFailsImportsNothing() {
        write(QStringLiteral("good.reg"), "REGEDIT4\n[" + kRoot + "\\Options]\n\"tray\"=\"0\"\n");
        QCOMPARE(run(QStringLiteral("regedit"), {file(QStringLiteral("good.reg"))}).status, 0);
        const QByteArray before = read(storePath());

        write(QStringLiteral("bad.reg"),
              "REGEDIT4\n[" + kRoot + "\\Options]\n\"tray\"=\"7\"\n\"AppPath\"=\"/unterminated\n");
        Run r = run(QStringLiteral("regedit"), {file(QStringLiteral("bad.reg"))});
        QCOMPARE(r.status, 1);
        QVERIFY2(r.err.contains(file(QStringLiteral("bad.reg")) + QStringLiteral(", line 4")),
                 qPrintable(r.err));
        QCOMPARE(read(storePath()), before); // not even the good line before the error

        r = run(QStringLiteral("regedit"), {QStringLiteral("/s"), file(QStringLiteral("missing.reg"))});
        QCOMPARE(r.status, 1);
        QVERIFY(r.err.isEmpty());
        r = run(QStringLiteral("regedit"), {file(QStringLiteral("missing.reg"))});
        QCOMPARE(r.status, 1);
        QVERIFY(r.err.contains(QStringLiteral("cannot read")));
        QCOMPARE(run(QStringLiteral("regedit"), {}).status, 2);
        QCOMPARE(
            run(QStringLiteral("regedit"), {QStringLiteral("/x"), file(QStringLiteral("good.reg"))}).status,
            2);
    }

    void exportRoundTrip() {
        write(QStringLiteral("in.reg"), "REGEDIT4\n[" + kRoot +
                                            "\\Micropause]\n\"Warning\"=\"a \\\\ b \\\"c\\\"\"\n"
                                            "[" +
                                            kRoot + "\\Scheme x\\y]\n\"1\"=\"title.avi\"\n[" + kRoot +
                                            "\\Empty]\n");
        QCOMPARE(run(QStringLiteral("regedit"), {file(QStringLiteral("in.reg"))}).status, 0);
        const QByteArray original = read(storePath());
        QCOMPARE(
            run(QStringLiteral("regedit"), {QStringLiteral("/e"), file(QStringLiteral("all.reg"))}).status,
            0);
        QCOMPARE(read(file(QStringLiteral("all.reg"))), original);

        QVERIFY(QFile::remove(storePath()));
        QCOMPARE(run(QStringLiteral("regedit"), {file(QStringLiteral("all.reg"))}).status, 0);
        QCOMPARE(read(storePath()), original);

        // One key and the keys below it.
        QCOMPARE(run(QStringLiteral("regedit"), {QStringLiteral("-E"), file(QStringLiteral("one.reg")),
                                                 QString::fromLatin1(kRoot + "\\SCHEME X")})
                     .status,
                 0);
        const QByteArray one = read(file(QStringLiteral("one.reg")));
        QVERIFY(one.contains("Scheme x\\y]") && !one.contains("\\Micropause]"));
        QCOMPARE(run(QStringLiteral("regedit"), {QStringLiteral("/e"), file(QStringLiteral("no.reg")),
                                                 QStringLiteral("HKEY_CURRENT_USER\\Software")})
                     .status,
                 1);
    }

    void shippedDefaultsImportAsTheDefaults() {
        const Run r = run(QStringLiteral("regedit"),
                          {QStringLiteral("/s"), QStringLiteral(TARVO_PROGRAM_DIR "/tarvo32.reg")});
        QCOMPARE(r.status, 0);
        tarvo::FileRegistryStore store(storePath());
        tarvo::SettingsStore settings(store);
        tarvo::SettingsRecord record;
        tarvo::loadAllSettings(settings, record);
        tarvo::SettingsRecord expected;
        expected.Scheme = QStringLiteral("*Medium Break"); // the built-in name, as the scheme list spells it
        QVERIFY(record == expected);
        QCOMPARE(store.value(tarvo::keys::Exercise, tarvo::keys::ProcrastinateM),
                 std::optional<QString>(QStringLiteral("5")));
        QCOMPARE(store.value(tarvo::keys::Micropause, tarvo::keys::DisableEsc2),
                 std::optional<QString>(QStringLiteral("0")));
        // Start-up writes the housekeeping keys before the import runs; the import must not touch them.
        QVERIFY(store.keys(tarvo::keys::Options).isEmpty());
    }

    void tarvoReportsABadSettingAndEnds() {
        QCOMPARE(run(QStringLiteral("tarvo"), {QStringLiteral("--version")})
                     .out.startsWith(QStringLiteral("Tarvo Micropause ")),
                 true);
        write(QStringLiteral("bad.reg"), "REGEDIT4\n[" + kRoot +
                                             "\\Micropause]\n\"InterruptFor\"=\"abc\"\n[" + kRoot +
                                             "\\Options]\n\"Initialised\"=\"1\"\n");
        QCOMPARE(
            run(QStringLiteral("regedit"), {QStringLiteral("/s"), file(QStringLiteral("bad.reg"))}).status,
            0);
        const Run r = run(QStringLiteral("tarvo"), {});
        QCOMPARE(r.status, 1);
        QVERIFY2(r.err.contains(QStringLiteral("Run-time error '13':\n\nType mismatch")), qPrintable(r.err));
        QVERIFY(r.err.contains(QStringLiteral("\"InterruptFor\" in section \"Micropause\" holds \"abc\"")));
        // Only what start-up writes before it reads the options ("tray") has changed.
        tarvo::FileRegistryStore after(storePath());
        QCOMPARE(after.keys(tarvo::keys::Options), (QStringList{"Initialised", "tray"}));
        QVERIFY(after.value(tarvo::keys::Options, tarvo::keys::Tray).value_or(QString()).toInt() > 0);
        QCOMPARE(after.keys(tarvo::keys::Micropause), QStringList{"InterruptFor"});

        // A damaged settings file: the message names file and line; the file stays as it was.
        write(QStringLiteral("config/tarvo/registry.reg"), "REGEDIT4\n[" + kRoot + "\\Micropause\n");
        const Run damaged = run(QStringLiteral("tarvo"), {});
        QCOMPARE(damaged.status, 1);
        QVERIFY2(damaged.err.contains(storePath() + QStringLiteral(", line 2")), qPrintable(damaged.err));
        QCOMPARE(read(storePath()), "REGEDIT4\n[" + kRoot + "\\Micropause\n");
    }
};

QTEST_GUILESS_MAIN(TestRegedit)
#include "tst_regedit.moc"
