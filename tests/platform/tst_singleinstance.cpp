// The single instance between real processes: the lock as the previous-instance report, key codes
// answered after they were handled, what a killed instance leaves behind, and who may connect.
// Every test runs with a private runtime folder, which the peer processes inherit.
#include "LocalSingleInstance.h"

#include <QDateTime>
#include <QElapsedTimer>
#include <QLocalSocket>
#include <QProcess>
#include <QTemporaryDir>
#include <QtTest>

#include <csignal>
#include <memory>
#include <sys/stat.h>
#include <unistd.h>

using namespace tarvo;

namespace {

QString peerPath() {
    return QCoreApplication::applicationDirPath() + QStringLiteral("/instance_peer");
}

QByteArray runPeer(const QStringList& args) {
    QProcess peer;
    peer.start(peerPath(), args);
    if (!peer.waitForFinished(30000))
        return "no answer";
    return peer.readAllStandardOutput().trimmed();
}

// waitForFinished() fails for a process that the event loop has already seen end.
bool ends(QProcess& peer) {
    return peer.state() == QProcess::NotRunning || peer.waitForFinished(30000);
}

// Starts a peer that becomes the running instance; its handle, or 0 when it did not.
std::int32_t startHolder(QProcess& holder, const QStringList& extra = {}) {
    holder.start(peerPath(), QStringList{QStringLiteral("hold")} + extra);
    if (!holder.waitForReadyRead(30000))
        return 0;
    const QByteArray line = holder.readLine().trimmed();
    return line.startsWith("running ") ? line.mid(8).toInt() : 0;
}

} // namespace

class TestSingleInstance : public QObject {
    Q_OBJECT

private:
    std::unique_ptr<QTemporaryDir> runtime_;
    QByteArray savedTmpDir_ = qgetenv("TMPDIR");

private slots:
    void init() {
        runtime_ = std::make_unique<QTemporaryDir>();
        QVERIFY(runtime_->isValid());
        qputenv("XDG_RUNTIME_DIR", QFile::encodeName(runtime_->path()));
    }
    void cleanup() {
        if (savedTmpDir_.isNull())
            qunsetenv("TMPDIR");
        else
            qputenv("TMPDIR", savedTmpDir_);
    }

    void secondProcessSeesRunningInstance_data() {
        QTest::addColumn<QStringList>("holdArgs");
        QTest::newRow("named like its executable") << QStringList();
        QTest::newRow("named otherwise") << QStringList{QStringLiteral("Tarvo Micropause")};
    }
    void secondProcessSeesRunningInstance() {
        QFETCH(QStringList, holdArgs);
        QProcess holder;
        const std::int32_t handle = startHolder(holder, holdArgs);
        QCOMPARE(handle, static_cast<std::int32_t>(holder.processId()));
        const QString lockPath = runtime_->filePath(QStringLiteral("tarvo-micropause.lock"));
        QVERIFY(QFile::exists(lockPath));
        QCOMPARE(runPeer({QStringLiteral("probe")}), QByteArray("previous"));

        // A lock does not go stale with age while its instance lives.
        QFile lockFile(lockPath);
        QVERIFY(lockFile.open(QIODevice::ReadOnly));
        QVERIFY(lockFile.setFileTime(QDateTime::currentDateTime().addDays(-2),
                                     QFileDevice::FileModificationTime));
        LocalSingleInstance second;
        QVERIFY(second.previousInstance());

        // "shutdown": the sender is answered, the holder ends and the next start becomes the instance.
        QCOMPARE(runPeer({QStringLiteral("send"), QString::number(handle), QStringLiteral("99")}),
                 QByteArray("sent 1"));
        QVERIFY(ends(holder));
        QCOMPARE(holder.readAllStandardOutput().trimmed(), QByteArray("key 99"));
        QCOMPARE(holder.exitCode(), 0);
        QVERIFY(!QFile::exists(LocalSingleInstance::socketPath(handle)));
        QVERIFY(!second.previousInstance());
        QCOMPARE(runPeer({QStringLiteral("probe")}), QByteArray("previous"));
        second.release();
        QVERIFY(!QFile::exists(lockPath));
        QCOMPARE(runPeer({QStringLiteral("probe")}), QByteArray("none"));
    }

    void senderReturnsAfterCodeWasHandled() {
        LocalSingleInstance instance;
        QVERIFY(!instance.previousInstance());
        QProcess sender;
        QList<int> handled;
        bool senderWaited = false;
        instance.listen([&](int keyCode) {
            handled.append(keyCode);
            senderWaited = sender.state() == QProcess::Running && !sender.waitForFinished(300);
        });
        const QList<int> codes{0, 99, -5};
        for (const int keyCode : codes) {
            senderWaited = false;
            sender.start(peerPath(), {QStringLiteral("send"), QString::number(instance.handle()),
                                      QString::number(keyCode)});
            QTRY_COMPARE_WITH_TIMEOUT(handled.size(), codes.indexOf(keyCode) + 1, 30000);
            QVERIFY2(senderWaited, "the sender returned while the key code was being handled");
            QVERIFY(ends(sender));
            QCOMPARE(sender.readAllStandardOutput().trimmed(), QByteArray("sent 1"));
        }
        QCOMPARE(handled, codes);
    }

    void malformedSendersAreCutOff_data() {
        QTest::addColumn<QByteArray>("bytes");
        QTest::newRow("not a number") << QByteArray("abc\n");
        QTest::newRow("trailing junk") << QByteArray("12x\n");
        QTest::newRow("no line end") << QByteArray(100, '1');
        QTest::newRow("nothing") << QByteArray();
    }
    void malformedSendersAreCutOff() {
        QFETCH(QByteArray, bytes);
        LocalSingleInstance instance;
        QVERIFY(!instance.previousInstance());
        QList<int> handled;
        instance.listen([&](int keyCode) { handled.append(keyCode); });
        QLocalSocket intruder;
        intruder.connectToServer(LocalSingleInstance::socketPath(instance.handle()));
        QVERIFY(intruder.waitForConnected(1000));
        intruder.write(bytes);
        intruder.flush();
        if (bytes.isEmpty())
            intruder.disconnectFromServer();
        QTRY_COMPARE_WITH_TIMEOUT(intruder.state(), QLocalSocket::UnconnectedState, 10000);

        // The listener goes on serving, and the junk never reached it.
        QProcess sender;
        sender.start(peerPath(),
                     {QStringLiteral("send"), QString::number(instance.handle()), QStringLiteral("5")});
        QTRY_COMPARE_WITH_TIMEOUT(handled, QList<int>{5}, 30000);
        QVERIFY(ends(sender));
        QCOMPARE(sender.readAllStandardOutput().trimmed(), QByteArray("sent 1"));
    }

    void killedInstanceDoesNotBlockNextStart() {
        QProcess holder;
        const std::int32_t handle = startHolder(holder);
        QVERIFY(handle > 0);
        ::kill(handle, SIGKILL);
        QVERIFY(ends(holder));
        QVERIFY2(QFile::exists(LocalSingleInstance::lockFilePath()) &&
                     QFile::exists(LocalSingleInstance::socketPath(handle)),
                 "a killed instance leaves its lock and socket behind");

        QElapsedTimer clock;
        clock.start();
        LocalSingleInstance next;
        QVERIFY(!next.previousInstance());
        QVERIFY(!next.sendKeyDown(handle, 0)); // the stale "tray" handle
        QVERIFY(clock.elapsed() < 1000);
        QCOMPARE(runPeer({QStringLiteral("probe")}), QByteArray("previous"));
    }

    void sendWithoutServerFailsAtOnce() {
        LocalSingleInstance instance;
        QProcess ended;
        ended.start(peerPath(), {QStringLiteral("probe")});
        QVERIFY(ended.waitForStarted());
        const auto endedHandle = static_cast<std::int32_t>(ended.processId());
        QVERIFY(ended.waitForFinished(30000));
        const std::int32_t notASocket = 2147483000;
        QFile plain(LocalSingleInstance::socketPath(notASocket));
        QVERIFY(plain.open(QIODevice::WriteOnly));

        for (const std::int32_t handle : {0, -1, instance.handle(), endedHandle, notASocket}) {
            QElapsedTimer clock;
            clock.start();
            QVERIFY2(!instance.sendKeyDown(handle, 0), qPrintable(QString::number(handle)));
            QVERIFY(clock.elapsed() < 1000);
        }
    }

    void socketIsPrivateToUserAndGoneAfterRelease() {
        LocalSingleInstance instance;
        QVERIFY(!instance.previousInstance());
        const QByteArray path = QFile::encodeName(LocalSingleInstance::socketPath(instance.handle()));
        QFile stale(QString::fromLocal8Bit(path)); // as left by a crashed process that had our id
        QVERIFY(stale.open(QIODevice::WriteOnly));
        stale.close();
        instance.listen([](int) {});
        struct stat st {};
        QCOMPARE(::stat(path.constData(), &st), 0);
        QVERIFY(S_ISSOCK(st.st_mode));
        QCOMPARE(st.st_mode & 0777, static_cast<mode_t>(0700));

        instance.release();
        QVERIFY(!QFile::exists(QString::fromLocal8Bit(path)));
        QVERIFY(!QFile::exists(LocalSingleInstance::lockFilePath()));
        QCOMPARE(runPeer({QStringLiteral("probe")}), QByteArray("none"));
    }

    void fallsBackToTemporaryFolder_data() {
        QTest::addColumn<QByteArray>("runtime");
        QTest::newRow("unset") << QByteArray();
        QTest::newRow("relative") << QByteArray("run/user");
        QTest::newRow("missing") << QByteArray("/nonexistent/tarvo-runtime");
    }
    void fallsBackToTemporaryFolder() {
        QFETCH(QByteArray, runtime);
        QTemporaryDir tmp;
        qputenv("TMPDIR", QFile::encodeName(tmp.path()));
        if (runtime.isNull())
            qunsetenv("XDG_RUNTIME_DIR");
        else
            qputenv("XDG_RUNTIME_DIR", runtime);
        const QString prefix = QDir(QDir(tmp.path()).canonicalPath())
                                   .filePath(QStringLiteral("tarvo-micropause-%1").arg(::getuid()));

        LocalSingleInstance instance;
        QVERIFY(!instance.previousInstance());
        QVERIFY(QFile::exists(prefix + QStringLiteral(".lock")));
        instance.listen([](int) {});
        QVERIFY(QFile::exists(prefix + QStringLiteral("-%1").arg(instance.handle())));
        QCOMPARE(runPeer({QStringLiteral("probe")}), QByteArray("previous"));
    }
};

QTEST_GUILESS_MAIN(TestSingleInstance)
#include "tst_singleinstance.moc"
