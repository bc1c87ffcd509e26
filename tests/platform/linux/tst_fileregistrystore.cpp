// The file-backed store: case rules, sharing with other processes, atomic replacement, and a damaged
// file that is never overwritten.
#include "core/RegistryStore.h"
#include "platform/linux/FileRegistryStore.h"
#include "support/Raised.h"

#include <QElapsedTimer>
#include <QProcess>
#include <QRandomGenerator>
#include <QTemporaryDir>
#include <QtTest>

#include <array>
#include <csignal>
#include <map>
#include <memory>

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

    // Two writers and regedit write while a third process reads; the writers and regedit are killed
    // at random moments and start again. Every write reported done survives (the reader also sees
    // each value only grow), every read parses, and no lock left by a killed process keeps the others
    // out. TARVO_STORE_FIRE_SECONDS runs it longer than 3 seconds.
    void writersUnderFire() {
        const int seconds = qEnvironmentVariableIntValue("TARVO_STORE_FIRE_SECONDS");
        const int ms = 1000 * (seconds > 0 ? seconds : 3);
        QProcess reader;
        reader.start(writerPath(), {path_, "read", QString::number(ms + 1000)});
        struct Writer {
            QString prefix;
            std::unique_ptr<QProcess> process;
            qint64 first = 0, last = -1;   // the running writer's first number, and the last one done
            std::map<qint64, qint64> done; // key number (n % 16) → the last n written there
        };
        std::array<Writer, 2> writers;
        writers[0].prefix = "a";
        writers[1].prefix = "b";
        int acknowledged = 0, kills = 0, imports = 0, round = 0, importedRound = 0;
        const auto start = [&](Writer& w) {
            w.process = std::make_unique<QProcess>();
            w.process->start(writerPath(), {path_, "ack", w.prefix, QString::number(w.first)});
        };
        const auto drain = [&](Writer& w) {
            for (; w.process->canReadLine(); ++acknowledged) {
                w.last = w.process->readLine().trimmed().toLongLong();
                w.done[w.last % 16] = w.last;
            }
        };
        const auto kill = [&](QProcess& p) {
            ::kill(static_cast<pid_t>(p.processId()), SIGKILL);
            ++kills;
            return p.waitForFinished(10000);
        };
        QProcess regedit;
        bool regeditKilled = false;
        QProcessEnvironment environment = QProcessEnvironment::systemEnvironment();
        environment.insert("XDG_CONFIG_HOME", dir_.filePath("cfg"));
        regedit.setProcessEnvironment(environment);
        const QString imported = dir_.filePath("round.reg");

        for (Writer& w : writers)
            start(w);
        auto* random = QRandomGenerator::global();
        QElapsedTimer clock;
        clock.start();
        while (clock.elapsed() < ms) {
            QTest::qWait(static_cast<int>(random->bounded(5, 50)));
            for (Writer& w : writers) {
                drain(w);
                QVERIFY2(w.process->state() != QProcess::NotRunning,
                         w.process->readAllStandardError().constData());
            }
            if (regedit.state() == QProcess::NotRunning) {
                if (round > 0 && !regeditKilled) {
                    QVERIFY2(regedit.exitStatus() == QProcess::NormalExit && regedit.exitCode() == 0,
                             regedit.readAllStandardError().constData());
                    importedRound = round;
                    ++imports;
                }
                QByteArray reg = "REGEDIT4\n[HKEY_CURRENT_USER\\Software\\VB and VBA Program Settings\\Tarvo "
                                 "Micropause\\Regedit]\n";
                for (int key = 0; key < 8; ++key)
                    reg += QStringLiteral("\"r%1\"=\"%2\"\n").arg(key).arg(round + 1).toUtf8();
                writeAll(imported, reg);
                regedit.start(TARVO_PROGRAM_DIR "/regedit", {"/s", imported});
                ++round;
                regeditKilled = false;
            }
            const quint32 victim = random->bounded(6);
            if (victim < writers.size()) {
                Writer& w = writers[victim];
                QVERIFY(kill(*w.process));
                drain(w);
                // The write after the last one reported may have landed: the next writer starts above it.
                w.first = std::max(w.first, w.last + 1) + 1;
                start(w);
            } else if (victim == 2 && regedit.state() != QProcess::NotRunning) {
                QVERIFY(kill(regedit));
                regeditKilled = true;
            }
        }
        for (Writer& w : writers) {
            QVERIFY(kill(*w.process));
            drain(w);
        }
        // waitForFinished says false for a process already seen to end (the last import may be done).
        const auto ended = [](QProcess& p, int waitMs) {
            return p.state() == QProcess::NotRunning || p.waitForFinished(waitMs);
        };
        QVERIFY(ended(regedit, 30000) && ended(reader, ms + 30000));
        QVERIFY2(reader.exitCode() == 0, reader.readAllStandardError().constData());

        FileRegistryStore store(path_);
        for (const Writer& w : writers)
            for (const auto& [slot, n] : w.done)
                QVERIFY(store.value("Race", w.prefix + QString::number(slot)).value_or("-1").toLongLong() >=
                        n);
        QVERIFY(store.value("Regedit", "r7").value_or("0").toInt() >= importedRound);
        // Whatever lock a killed process left behind gives way within the store's wait.
        QVERIFY(!raised<StoreError>([&] { store.setValue("Options", "after", "1"); }));
        qInfo("%d writes reported done, %d imports done, %d processes killed; reads, failed reads: %s",
              acknowledged, imports, kills, reader.readAllStandardOutput().trimmed().constData());
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
        // Killed before it wrote its process id into the lock, a writer leaves it empty: a few seconds
        // old, it no longer blocks.
        QFile lock(path_ + ".lock");
        QVERIFY(lock.open(QIODevice::WriteOnly) && lock.setFileTime(QDateTime::currentDateTime().addSecs(-6),
                                                                    QFileDevice::FileModificationTime));
        lock.close();
        QElapsedTimer waited;
        waited.start();
        QVERIFY(!raised<StoreError>([&] { store.setValue("Options", "round", "after an empty lock"); }));
        QVERIFY(waited.elapsed() < 2000);
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
