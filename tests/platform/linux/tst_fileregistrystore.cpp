// The file-backed store: case rules, sharing with other processes, atomic replacement, and a damaged
// file that is never overwritten.
#include "core/RegistryStore.h"
#include "platform/linux/FileRegistryStore.h"
#include "support/Raised.h"

#include <QProcess>
#include <QRandomGenerator>
#include <QTemporaryDir>
#include <QtTest>

#include <csignal>

using namespace tarvo;

namespace {

QByteArray readAll(const QString& path) {
    QFile f(path);
    return f.open(QIODevice::ReadOnly) ? f.readAll() : QByteArray();
}

void writeAll(const QString& path, const QByteArray& bytes) {
    QFile f(path);
    QVERIFY(f.open(QIODevice::WriteOnly | QIODevice::Truncate));
    f.write(bytes);
}

std::optional<QString> some(const QString& text) {
    return text;
}

QString writerPath() {
    return QCoreApplication::applicationDirPath() + "/store_writer";
}

} // namespace

class TestFileRegistryStore : public QObject {
    Q_OBJECT

private:
    QTemporaryDir dir_;
    QString path_;

private slots:
    void init() {
        QVERIFY(dir_.isValid());
        path_ = dir_.filePath("cfg/tarvo/registry.reg");
        QFile::remove(path_);
    }

    void caseRulesAndOrder() {
        FileRegistryStore store(path_);
        QVERIFY(!store.value("Options", "tray"));
        QVERIFY2(!QFile::exists(path_), "reading must not create the file");

        store.setValue("Scheme*Medium Break", "Num", "3");
        store.setValue("scheme*medium break", "NUM", "4");
        store.setValue("Options", "tray", "0");
        QCOMPARE(store.value("SCHEME*MEDIUM BREAK", "num"), some("4"));
        // The first-written case stays, in the file too.
        QCOMPARE(store.sections(), (QStringList{"Scheme*Medium Break", "Options"}));
        QCOMPARE(store.keys("scheme*MEDIUM break"), QStringList{"Num"});
        QVERIFY(readAll(path_).contains("[HKEY_CURRENT_USER\\Software\\VB and VBA Program Settings\\Tarvo "
                                        "Micropause\\Scheme*Medium Break]\n\"Num\"=\"4\"\n"));

        store.deleteValue("OPTIONS", "Tray");
        QVERIFY(!store.value("Options", "tray"));
        store.setValue("Scheme*Medium Break\\Sub", "k", "v");
        store.deleteSection("scheme*medium break");
        QCOMPARE(store.sections(), QStringList{"Options"});
        QVERIFY(FileRegistryStore(path_).keys("Options").isEmpty());
    }

    void seesOtherWritersAndBatches() {
        FileRegistryStore a(path_);
        FileRegistryStore b(path_);
        a.setValue("Options", "tray", "123");
        QCOMPARE(b.value("options", "TRAY"), some("123"));
        b.setValue("Options", "Initialised", "1");
        a.setValue("Options", "AppPath", "/x");
        // a's write merged b's: nothing is lost between two store objects.
        QCOMPARE(FileRegistryStore(path_).keys("Options"), (QStringList{"tray", "Initialised", "AppPath"}));

        {
            StoreBatch batch(a);
            a.setValue("Micropause", "InterruptFor", "20");
            a.setValue("Micropause", "InterruptEvery", "5");
            QCOMPARE(a.value("Micropause", "InterruptFor"), some("20"));
            QVERIFY2(!FileRegistryStore(path_).value("Micropause", "InterruptFor"),
                     "a batch is written at its end");
            batch.finish();
        }
        QCOMPARE(b.value("Micropause", "InterruptEvery"), some("5"));
    }

    // Reading or writing a damaged file raises an error that names file and line, and leaves it as it
    // is; an empty file is an empty store. The line numbers themselves are the codec's.
    void damagedFileIsNeverOverwritten() {
        const QByteArray options = "REGEDIT4\n\n[HKEY_CURRENT_USER\\Software\\VB and VBA Program "
                                   "Settings\\Tarvo Micropause\\Options]\n";
        const std::pair<QByteArray, int> damaged[] = {{"tray=0\n", 1},
                                                      {options + "\"tray\"=\"0\n", 4},
                                                      {"REGEDIT4\n[HKEY_CURRENT_USER\\Software\\Other]\n", 2},
                                                      {options + "\"tray\"=-\n", 4}};
        QDir().mkpath(QFileInfo(path_).absolutePath());
        for (const auto& [content, line] : damaged) {
            writeAll(path_, content);
            FileRegistryStore store(path_);
            for (const auto& e : {raised<StoreError>([&] { store.value("Options", "tray"); }),
                                  raised<StoreError>([&] { store.setValue("Options", "tray", "1"); })})
                QVERIFY2(e && e->message().contains(QStringLiteral("%1, line %2").arg(path_).arg(line)),
                         content.constData());
            QCOMPARE(readAll(path_), content);
        }
        writeAll(path_, QByteArray("\n"));
        QVERIFY(!FileRegistryStore(path_).value("Options", "tray"));
    }

    void twoProcessesWriteConcurrently() {
        const int count = 40;
        QProcess p1, p2;
        p1.start(writerPath(), {path_, "keys", "a", QString::number(count)});
        p2.start(writerPath(), {path_, "keys", "b", QString::number(count)});
        QVERIFY(p1.waitForFinished(60000) && p2.waitForFinished(60000));
        QCOMPARE(p1.exitCode(), 0);
        QCOMPARE(p2.exitCode(), 0);
        FileRegistryStore store(path_);
        QCOMPARE(store.keys("Race").size(), 2 * count);
        for (int i = 0; i < count; ++i) {
            QCOMPARE(store.value("Race", QStringLiteral("a%1").arg(i)), some(QString::number(i)));
            QCOMPARE(store.value("Race", QStringLiteral("b%1").arg(i)), some(QString::number(i)));
        }
    }

    void writerKilledMidWriteLeavesOldOrNew() {
        FileRegistryStore store(path_);
        for (int round = 0; round < 8; ++round) {
            QProcess writer;
            writer.start(writerPath(), {path_, "churn"});
            QVERIFY(writer.waitForReadyRead(30000));
            QTest::qWait(static_cast<int>(QRandomGenerator::global()->bounded(5, 60)));
            ::kill(static_cast<pid_t>(writer.processId()), SIGKILL);
            QVERIFY(writer.waitForFinished(10000));

            const QString payload = FileRegistryStore(path_).value("Churn", "payload").value_or(QString());
            QCOMPARE(payload.size(), 4 << 20);
            QCOMPARE(payload.count(payload.front()), payload.size());
            // The killed writer's lock does not block the next write.
            store.setValue("Options", "round", QString::number(round));
            QCOMPARE(FileRegistryStore(path_).value("Options", "round"), some(QString::number(round)));
        }
    }

    void defaultPathFollowsXdg() {
        const QByteArray saved = qgetenv("XDG_CONFIG_HOME");
        qputenv("XDG_CONFIG_HOME", "/somewhere/cfg");
        QCOMPARE(FileRegistryStore::defaultPath(), "/somewhere/cfg/tarvo/registry.reg");
        qputenv("XDG_CONFIG_HOME", "relative/cfg");
        QCOMPARE(FileRegistryStore::defaultPath(), QDir::homePath() + "/.config/tarvo/registry.reg");
        qunsetenv("XDG_CONFIG_HOME");
        QCOMPARE(FileRegistryStore::defaultPath(), QDir::homePath() + "/.config/tarvo/registry.reg");
        if (!saved.isNull())
            qputenv("XDG_CONFIG_HOME", saved);
    }
};

QTEST_GUILESS_MAIN(TestFileRegistryStore)
#include "tst_fileregistrystore.moc"
