// The file-backed store: case rules, sharing with other processes, atomic replacement, and a damaged
// file that is never overwritten.
#include "FileRegistryStore.h"
#include "RegistryStore.h"

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

QString writerPath() {
    return QCoreApplication::applicationDirPath() + QStringLiteral("/store_writer");
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
        path_ = dir_.filePath(QStringLiteral("cfg/tarvo/registry.reg"));
        QFile::remove(path_);
    }

    void caseRulesAndOrder() {
        FileRegistryStore store(path_);
        QVERIFY(!store.value(QStringLiteral("Options"), QStringLiteral("tray")));
        QVERIFY2(!QFile::exists(path_), "reading must not create the file");

        store.setValue(QStringLiteral("Scheme*Medium Break"), QStringLiteral("Num"), QStringLiteral("3"));
        store.setValue(QStringLiteral("scheme*medium break"), QStringLiteral("NUM"), QStringLiteral("4"));
        store.setValue(QStringLiteral("Options"), QStringLiteral("tray"), QStringLiteral("0"));
        QCOMPARE(store.value(QStringLiteral("SCHEME*MEDIUM BREAK"), QStringLiteral("num")),
                 std::optional<QString>(QStringLiteral("4")));
        // The first-written case stays, in the file too.
        QCOMPARE(store.sections(),
                 (QStringList{QStringLiteral("Scheme*Medium Break"), QStringLiteral("Options")}));
        QCOMPARE(store.keys(QStringLiteral("scheme*MEDIUM break")), QStringList{QStringLiteral("Num")});
        QVERIFY(readAll(path_).contains("[HKEY_CURRENT_USER\\Software\\VB and VBA Program Settings\\Tarvo "
                                        "Micropause\\Scheme*Medium Break]\n\"Num\"=\"4\"\n"));

        store.deleteValue(QStringLiteral("OPTIONS"), QStringLiteral("Tray"));
        QVERIFY(!store.value(QStringLiteral("Options"), QStringLiteral("tray")));
        store.setValue(QStringLiteral("Scheme*Medium Break\\Sub"), QStringLiteral("k"), QStringLiteral("v"));
        store.deleteSection(QStringLiteral("scheme*medium break"));
        QCOMPARE(store.sections(), QStringList{QStringLiteral("Options")});
        QVERIFY(FileRegistryStore(path_).keys(QStringLiteral("Options")).isEmpty());
    }

    void seesOtherWritersAndBatches() {
        FileRegistryStore a(path_);
        FileRegistryStore b(path_);
        a.setValue(QStringLiteral("Options"), QStringLiteral("tray"), QStringLiteral("123"));
        QCOMPARE(b.value(QStringLiteral("options"), QStringLiteral("TRAY")),
                 std::optional<QString>(QStringLiteral("123")));
        b.setValue(QStringLiteral("Options"), QStringLiteral("Initialised"), QStringLiteral("1"));
        a.setValue(QStringLiteral("Options"), QStringLiteral("AppPath"), QStringLiteral("/x"));
        // a's write merged b's: nothing is lost between two store objects.
        QCOMPARE(
            FileRegistryStore(path_).keys(QStringLiteral("Options")),
            (QStringList{QStringLiteral("tray"), QStringLiteral("Initialised"), QStringLiteral("AppPath")}));

        {
            StoreBatch batch(a);
            a.setValue(QStringLiteral("Micropause"), QStringLiteral("InterruptFor"), QStringLiteral("20"));
            a.setValue(QStringLiteral("Micropause"), QStringLiteral("InterruptEvery"), QStringLiteral("5"));
            QCOMPARE(a.value(QStringLiteral("Micropause"), QStringLiteral("InterruptFor")),
                     std::optional<QString>(QStringLiteral("20")));
            QVERIFY2(
                !FileRegistryStore(path_).value(QStringLiteral("Micropause"), QStringLiteral("InterruptFor")),
                "a batch is written at its end");
            batch.finish();
        }
        QCOMPARE(b.value(QStringLiteral("Micropause"), QStringLiteral("InterruptEvery")),
                 std::optional<QString>(QStringLiteral("5")));
    }

    void damagedFileIsNeverOverwritten_data() {
        QTest::addColumn<QByteArray>("content");
        QTest::addColumn<int>("line");
        const QByteArray head =
            "REGEDIT4\n\n[HKEY_CURRENT_USER\\Software\\VB and VBA Program Settings\\Tarvo "
            "Micropause\\Options]\n";
        QTest::newRow("not an export") << QByteArray("tray=0\n") << 1;
        QTest::newRow("truncated header") << QByteArray(head + "[HKEY_CURRENT_USER\\Software\n") << 4;
        QTest::newRow("unterminated string") << QByteArray(head + "\"tray\"=\"0\n") << 4;
        QTest::newRow("foreign key") << QByteArray("REGEDIT4\n[HKEY_CURRENT_USER\\Software\\Other]\n") << 2;
    }
    void damagedFileIsNeverOverwritten() {
        QFETCH(QByteArray, content);
        QFETCH(int, line);
        QDir().mkpath(QFileInfo(path_).absolutePath());
        writeAll(path_, content);
        FileRegistryStore store(path_);
        for (int attempt = 0; attempt < 2; ++attempt) {
            try {
                if (attempt == 0)
                    store.value(QStringLiteral("Options"), QStringLiteral("tray"));
                else
                    store.setValue(QStringLiteral("Options"), QStringLiteral("tray"), QStringLiteral("1"));
                QFAIL("a damaged file was accepted");
            } catch (const StoreError& e) {
                QVERIFY2(e.message().contains(QStringLiteral("%1, line %2").arg(path_).arg(line)),
                         qPrintable(e.message()));
            }
        }
        QCOMPARE(readAll(path_), content);

        // An empty file is an empty store, not damage.
        writeAll(path_, QByteArray("\n"));
        QVERIFY(!store.value(QStringLiteral("Options"), QStringLiteral("tray")));
    }

    void twoProcessesWriteConcurrently() {
        const int count = 40;
        QProcess p1, p2;
        p1.start(writerPath(), {path_, QStringLiteral("keys"), QStringLiteral("a"), QString::number(count)});
        p2.start(writerPath(), {path_, QStringLiteral("keys"), QStringLiteral("b"), QString::number(count)});
        QVERIFY(p1.waitForFinished(60000) && p2.waitForFinished(60000));
        QCOMPARE(p1.exitCode(), 0);
        QCOMPARE(p2.exitCode(), 0);
        FileRegistryStore store(path_);
        QCOMPARE(store.keys(QStringLiteral("Race")).size(), 2 * count);
        for (int i = 0; i < count; ++i) {
            QCOMPARE(store.value(QStringLiteral("Race"), QStringLiteral("a%1").arg(i)),
                     std::optional<QString>(QString::number(i)));
            QCOMPARE(store.value(QStringLiteral("Race"), QStringLiteral("b%1").arg(i)),
                     std::optional<QString>(QString::number(i)));
        }
    }

    void writerKilledMidWriteLeavesOldOrNew() {
        FileRegistryStore store(path_);
        for (int round = 0; round < 8; ++round) {
            QProcess writer;
            writer.start(writerPath(), {path_, QStringLiteral("churn")});
            QVERIFY(writer.waitForReadyRead(30000));
            QTest::qWait(static_cast<int>(QRandomGenerator::global()->bounded(5, 60)));
            ::kill(static_cast<pid_t>(writer.processId()), SIGKILL);
            QVERIFY(writer.waitForFinished(10000));

            const QString payload = FileRegistryStore(path_)
                                        .value(QStringLiteral("Churn"), QStringLiteral("payload"))
                                        .value_or(QString());
            QCOMPARE(payload.size(), 4 << 20);
            QCOMPARE(payload.count(payload.front()), payload.size());
            // The killed writer's lock does not block the next write.
            store.setValue(QStringLiteral("Options"), QStringLiteral("round"), QString::number(round));
            QCOMPARE(FileRegistryStore(path_).value(QStringLiteral("Options"), QStringLiteral("round")),
                     std::optional<QString>(QString::number(round)));
        }
    }

    void defaultPathFollowsXdg() {
        const QByteArray saved = qgetenv("XDG_CONFIG_HOME");
        qputenv("XDG_CONFIG_HOME", "/somewhere/cfg");
        QCOMPARE(FileRegistryStore::defaultPath(), QStringLiteral("/somewhere/cfg/tarvo/registry.reg"));
        qputenv("XDG_CONFIG_HOME", "relative/cfg");
        QCOMPARE(FileRegistryStore::defaultPath(),
                 QDir::homePath() + QStringLiteral("/.config/tarvo/registry.reg"));
        qunsetenv("XDG_CONFIG_HOME");
        QCOMPARE(FileRegistryStore::defaultPath(),
                 QDir::homePath() + QStringLiteral("/.config/tarvo/registry.reg"));
        if (!saved.isNull())
            qputenv("XDG_CONFIG_HOME", saved);
    }
};

QTEST_GUILESS_MAIN(TestFileRegistryStore)
#include "tst_fileregistrystore.moc"
