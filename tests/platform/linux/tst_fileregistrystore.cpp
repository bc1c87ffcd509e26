// The file-backed store: reads and batches, writers in other processes killed at random moments,
// atomic replacement, locks left behind, a damaged file that is never overwritten, and its place.
#include "core/RegistryStore.h"
#include "platform/linux/FileRegistryStore.h"
#include "support/Programs.h"
#include "support/Raised.h"

#include <QElapsedTimer>
#include <QProcess>
#include <QTemporaryDir>
#include <QtTest>

#include <array>
#include <thread>

using namespace tarvo;

namespace {

qint64 raceValue(FileRegistryStore& store, int writer) {
    return store.value("Race", QString::number(writer)).value_or("-1").toLongLong();
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

    // Reads create nothing and see other writers; a batch is written at its end. (Case rules: the
    // settings and regedit tests; writes of several processes that merge: writersUnderFire.)
    void readsAndBatches() {
        FileRegistryStore a(path_);
        FileRegistryStore b(path_);
        QVERIFY(!b.value("Options", "tray"));
        QVERIFY2(!QFile::exists(path_), "reading must not create the file");
        a.setValue("Options", "tray", "123");
        QCOMPARE(b.value("Options", "tray"), std::optional<QString>("123"));
        StoreBatch batch(a);
        a.setValue("Micropause", "InterruptFor", "20");
        a.setValue("Micropause", "InterruptEvery", "5");
        QCOMPARE(a.value("Micropause", "InterruptFor"), std::optional<QString>("20"));
        QVERIFY2(!FileRegistryStore(path_).value("Micropause", "InterruptFor"),
                 "a batch is written at its end");
        batch.finish();
        QCOMPARE(b.value("Micropause", "InterruptEvery"), std::optional<QString>("5"));
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
        for (const auto& [content, line] : damaged) {
            QVERIFY(writeFile(path_, content));
            FileRegistryStore store(path_);
            for (const auto& e : {raised<StoreError>([&] { store.value("Options", "tray"); }),
                                  raised<StoreError>([&] { store.setValue("Options", "tray", "1"); })})
                QVERIFY2(e && e->message().contains(QStringLiteral("%1, line %2").arg(path_).arg(line)),
                         content.constData());
            QCOMPARE(readFile(path_), content);
        }
        QVERIFY(writeFile(path_, "\n"));
        QVERIFY(!FileRegistryStore(path_).value("Options", "tray"));
    }

    // Two writer processes write while this one reads; each writer is killed at a random moment of its
    // own and starts again. Every write reported done survives, every read parses and sees no value go
    // back (so a write replaces the file whole), and no lock left by a killed writer keeps the others
    // out. TARVO_STORE_FIRE_SECONDS runs it longer than 3 seconds.
    void writersUnderFire() {
        const int seconds = qEnvironmentVariableIntValue("TARVO_STORE_FIRE_SECONDS");
        int reads = 0;
        QStringList failures;
        std::jthread reader([&](std::stop_token firing) { // stopped and joined however the test ends
            std::array<qint64, 2> last{-1, -1};
            // A fresh store object each time, so that every read parses the file; the pause leaves the
            // writers the processor.
            for (; !firing.stop_requested(); ++reads, QThread::msleep(2)) {
                try {
                    FileRegistryStore store(path_);
                    for (int i : {0, 1}) {
                        const qint64 was = std::exchange(last[i], raceValue(store, i));
                        if (last[i] < was)
                            failures << QStringLiteral("%1 went back from %2").arg(i).arg(was);
                    }
                } catch (const StoreError& e) {
                    failures << e.message();
                }
            }
        });
        std::array<QProcess, 2> writers;
        std::array<qint64, 2> done{-1, -1}; // the last write each writer reported done
        int kills = 0;
        const auto drain = [&](int i) {
            while (writers[i].canReadLine())
                done[i] = writers[i].readLine().trimmed().toLongLong();
        };
        const auto start = [&](int i) {
            writers[i].start(QCoreApplication::applicationDirPath() + "/store_writer",
                             {path_, QString::number(i)});
        };
        start(0);
        start(1);
        QElapsedTimer clock;
        for (clock.start(); clock.elapsed() < 1000 * (seconds > 0 ? seconds : 3); QTest::qWait(5)) {
            for (int i : {0, 1}) {
                drain(i);
                if (writers[i].state() != QProcess::NotRunning)
                    continue;
                // Killed by its alarm: anything else is a failed write.
                QVERIFY2(writers[i].exitStatus() == QProcess::CrashExit,
                         writers[i].readAllStandardError().constData());
                start(i);
                ++kills;
            }
        }
        for (int i : {0, 1}) {
            QVERIFY(writers[i].state() == QProcess::NotRunning || writers[i].waitForFinished(10000));
            drain(i);
        }
        reader.request_stop();
        reader.join();
        QVERIFY2(failures.isEmpty(), qPrintable(failures.join('\n')));

        FileRegistryStore store(path_);
        for (int i : {0, 1})
            QVERIFY(raceValue(store, i) >= done[i]);
        // Whatever lock a killed writer left behind gives way within the store's wait; so does an
        // empty one, left by a writer killed before it wrote its id into it, once a few seconds old.
        QVERIFY(!raised<StoreError>([&] { store.setValue("Options", "after", "1"); }));
        QFile lock(path_ + ".lock");
        QVERIFY(lock.open(QIODevice::WriteOnly) && lock.setFileTime(QDateTime::currentDateTime().addSecs(-6),
                                                                    QFileDevice::FileModificationTime));
        lock.close();
        clock.restart();
        QVERIFY(!raised<StoreError>([&] { store.setValue("Options", "after", "2"); }));
        QVERIFY(clock.elapsed() < 2000);
        qInfo("%lld writes reported done, %d writers killed, %d reads", done[0] + done[1], kills, reads);
    }

    void defaultPathFollowsXdg() {
        const QByteArray saved = qgetenv("XDG_CONFIG_HOME");
        qputenv("XDG_CONFIG_HOME", "/somewhere/cfg");
        QCOMPARE(FileRegistryStore::defaultPath(), "/somewhere/cfg/tarvo/registry.reg");
        qputenv("XDG_CONFIG_HOME", "relative/cfg"); // as good as unset
        QCOMPARE(FileRegistryStore::defaultPath(), QDir::homePath() + "/.config/tarvo/registry.reg");
        qputenv("XDG_CONFIG_HOME", saved);
    }
};

QTEST_GUILESS_MAIN(TestFileRegistryStore)
#include "tst_fileregistrystore.moc"
