// The real tarvomultimedia program: it renders every built-in medium into a folder, and what it writes
// is read back by our own AVI reader and by Qt's image readers; the shipped schemes, imported by the
// real regedit, name exactly those files.
#include "engine/ExerciseTable.h"
#include "engine/SchemeStore.h"
#include "platform/linux/FileRegistryStore.h"
#include "settings/SettingsStore.h"
#include "support/AviReader.h"
#include "support/Programs.h"

#include <QDir>
#include <QTemporaryDir>
#include <QtTest>

namespace {

const QStringList kSchemes{"*Short Break", "*Medium Break", "*Long Break"};

QStringList mediaIn(const QString& folder) {
    return QDir(folder).entryList(QDir::Files | QDir::Hidden, QDir::Name);
}

} // namespace

class TestTarvoMultimedia : public QObject {
    Q_OBJECT

private:
    QTemporaryDir dir_;
    QString media_;

    ProgramRun run(const QStringList& args) const {
        return runProgram("tarvomultimedia", args, dir_.path(), 240000);
    }
    QString medium(const QString& name) const { return QDir(media_).filePath(name); }

private slots:
    void initTestCase() {
        QVERIFY(dir_.isValid());
        media_ = dir_.filePath("media");
        QVERIFY(QDir().mkpath(media_));
        const ProgramRun r = run({media_});
        QVERIFY2(r.status == 0, qPrintable(r.err));
        // The shipped settings, imported as the first start does, into this test's own store.
        QCOMPARE(runProgram("regedit", {"/s", TARVO_PROGRAM_DIR "/tarvo32.reg"}, dir_.path()).status, 0);
    }

    // Videos frame by frame through our own strict reader and Qt's JPEG reader (among them frames of an
    // odd size, which need a pad byte); pictures as 24-bit BMPs.
    void everyMediumReadsBack() {
        const QStringList names = mediaIn(media_);
        QVERIFY(names.contains("title.avi") && !names.filter(".bmp").isEmpty());
        qint64 total = 0;
        bool oddFrame = false;
        for (const QString& name : names) {
            const QByteArray bytes = readFile(medium(name));
            total += bytes.size();
            if (name.endsWith(QLatin1String(".bmp"))) {
                QCOMPARE(qFromLittleEndian<quint16>(bytes.constData() + 28), quint16(24));
                QCOMPARE(QImage::fromData(bytes, "BMP").size(), QSize(320, 240));
                continue;
            }
            const AviFile avi = readAvi(bytes);
            QVERIFY2(avi.errors.isEmpty(), qPrintable(name + ' ' + avi.errors.join(' ')));
            // At least a second of movement.
            QVERIFY2(avi.width == 320 && avi.height == 240 && avi.frames.size() >= 12, qPrintable(name));
            for (const QByteArray& frame : avi.frames) {
                QVERIFY2(QImage::fromData(frame, "JPG").size() == QSize(320, 240), qPrintable(name));
                oddFrame |= frame.size() % 2 == 1;
            }
            if (name == QLatin1String("title.avi"))
                QCOMPARE(qRound(avi.frames.size() * avi.microSecPerFrame / 1e6), 10); // seconds
        }
        QVERIFY2(total < 20'000'000, qPrintable(QString::number(total)));
        QVERIFY(oddFrame);
    }

    void shippedSchemesPlayTheRenderedMedia() {
        tarvo::FileRegistryStore store(dir_.filePath("config/tarvo/registry.reg"));
        tarvo::SettingsStore settings(store);
        QCOMPARE(tarvo::readSchemeList(settings), kSchemes);
        QSet<QString> used;
        for (const QString& scheme : kSchemes) {
            tarvo::ExerciseTable table;
            tarvo::LoadScheme(settings, table, scheme);
            QSet<QString> inScheme;
            for (int i = 1; i <= table.ExerciseCount; ++i) {
                const tarvo::ExerciseRecord& e = table.Exercises[static_cast<size_t>(i)];
                const QString where = QStringLiteral("%1 %2 %3").arg(scheme).arg(i).arg(e.File);
                QVERIFY2(QFileInfo::exists(medium(e.File)) &&
                             QFileInfo::exists(TARVO_PROGRAM_DIR "/" + e.File) && !inScheme.contains(e.File),
                         qPrintable(where));
                QVERIFY2(e.Include == 1 && e.Seconds >= 10 && e.Seconds <= 30, qPrintable(where));
                QVERIFY2(!e.Caption.isEmpty() && e.Caption != QLatin1String("error!"), qPrintable(where));
                inScheme.insert(e.File);
            }
            used += inScheme;
            // Each scheme fills at least two breaks of its size, so successive breaks differ.
            const int perBreak = scheme == kSchemes[0] ? 3 : scheme == kSchemes[1] ? 6 : 10;
            QVERIFY2(table.ExerciseCount >= 2 * perBreak, qPrintable(scheme));
        }
        // Every rendered medium but the opening is played by some scheme, and nothing else is rendered.
        const QStringList files = mediaIn(media_);
        QSet<QString> rendered(files.begin(), files.end());
        rendered.remove("title.avi");
        QCOMPARE(used, rendered);
        QVERIFY(used.size() >= 16);
    }

    void anUnwritableFolderIsNamedAndLeftClean() {
        // Root may write anywhere, so the folder is made impossible: its parent is a file.
        QTemporaryDir scratch;
        QVERIFY(writeFile(scratch.filePath("blocker"), {}));
        const QString folder = scratch.filePath("blocker/media");
        const ProgramRun r = run({folder});
        QCOMPARE(r.status, 1);
        QVERIFY2(r.err.contains("cannot write") && r.err.contains(folder), qPrintable(r.err));
        QCOMPARE(mediaIn(scratch.path()), QStringList{"blocker"});

        QCOMPARE(run({"--bogus"}).status, 2);
        QCOMPARE(run({media_, media_}).status, 2);
    }

    // A clip of the user's own in place of a built-in one is kept, and a built-in one gone missing is
    // made again. (That the files there are not touched at all, the installed program's test shows.)
    void existingFilesAreLeftAlone() {
        const QStringList before = mediaIn(media_);
        QVERIFY(writeFile(medium("neckturn.avi"), "my own clip") && QFile::remove(medium("shrug.avi")));
        const ProgramRun r = run({media_});
        QVERIFY2(r.status == 0, qPrintable(r.err));
        QCOMPARE(readFile(medium("neckturn.avi")), QByteArray("my own clip"));
        QVERIFY(readAvi(readFile(medium("shrug.avi"))).errors.isEmpty());
        QCOMPARE(mediaIn(media_), before); // and no temporary files left behind
    }
};

QTEST_MAIN(TestTarvoMultimedia)
#include "tst_tarvomultimedia.moc"
