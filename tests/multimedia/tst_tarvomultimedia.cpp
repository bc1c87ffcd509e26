// The real tarvomultimedia program: it renders every built-in medium into a folder, and what it writes
// is read back by our own AVI reader, by GStreamer (what the player uses) and by Qt's image readers;
// the shipped schemes, imported by the real regedit, name exactly those files. Also leaves a contact
// sheet of every exercise in the build's screenshots folder for a person to look at.
#include "engine/ExerciseTable.h"
#include "engine/SchemeStore.h"
#include "platform/linux/FileRegistryStore.h"
#include "settings/SettingsStore.h"
#include "support/AviReader.h"
#include "support/Programs.h"

#include <QDir>
#include <QFont>
#include <QPainter>
#include <QProcess>
#include <QRegularExpression>
#include <QStandardPaths>
#include <QTemporaryDir>
#include <QtTest>

#include <cmath>
#include <map>

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
    std::unique_ptr<tarvo::FileRegistryStore> store_; // the imported tarvo32.reg

    ProgramRun run(const QString& program, const QStringList& args) const {
        return runProgram(program, args, dir_.path(), {}, 240000);
    }

    QStringList videos() const { return QDir(media_).entryList({"*.avi"}, QDir::Files); }
    QStringList pictures() const { return QDir(media_).entryList({"*.bmp"}, QDir::Files); }

private slots:
    void initTestCase() {
        QVERIFY(dir_.isValid());
        media_ = dir_.filePath("media");
        QVERIFY(QDir().mkpath(media_));
        const ProgramRun r = run("tarvomultimedia", {media_});
        QVERIFY2(r.status == 0, qPrintable(r.err));
        // The shipped settings, imported as the first start does, into this test's own store.
        const ProgramRun imported = run("regedit", {"/s", QStringLiteral(TARVO_PROGRAM_DIR "/tarvo32.reg")});
        QCOMPARE(imported.status, 0);
        store_ = std::make_unique<tarvo::FileRegistryStore>(dir_.filePath("config/tarvo/registry.reg"));
    }

    // Videos frame by frame through our own reader and Qt's JPEG reader; pictures as 24-bit BMPs.
    void everyMediumReadsBack() {
        QVERIFY(videos().contains("title.avi"));
        QVERIFY(!pictures().isEmpty());
        qint64 total = 0;
        for (const QString& name : mediaIn(media_))
            total += QFileInfo(QDir(media_).filePath(name)).size();
        QVERIFY2(total < 20'000'000, qPrintable(QString::number(total)));

        for (const QString& name : pictures()) {
            const QByteArray bytes = readFile(QDir(media_).filePath(name));
            QVERIFY(bytes.startsWith("BM"));
            QCOMPARE(qFromLittleEndian<quint16>(bytes.constData() + 28), quint16(24));
            QCOMPARE(QImage::fromData(bytes, "BMP").size(), QSize(320, 240));
        }
        for (const QString& name : videos()) {
            const AviFile avi = readAvi(readFile(QDir(media_).filePath(name)));
            QVERIFY2(avi.errors.isEmpty(),
                     qPrintable(name + QLatin1Char(' ') + avi.errors.join(QLatin1Char(' '))));
            QCOMPARE(avi.width, 320u);
            QCOMPARE(avi.height, 240u);
            QCOMPARE(avi.frames.size(), size_t(avi.totalFrames));
            QVERIFY2(avi.totalFrames >= 12, qPrintable(name)); // at least a second of movement
            for (const QByteArray& frame : avi.frames)
                QVERIFY2(QImage::fromData(frame, "JPG").size() == QSize(320, 240), qPrintable(name));
            if (name == QLatin1String("title.avi"))
                QCOMPARE(qRound(avi.totalFrames * avi.microSecPerFrame / 1e6), 10); // seconds
        }
    }

    void gstreamerPlaysEveryVideo() {
        const QString discoverer = QStandardPaths::findExecutable("gst-discoverer-1.0");
        if (discoverer.isEmpty())
            QSKIP("gst-discoverer-1.0 is not installed (scripts/setup.sh installs it)");
        const QRegularExpression duration("Duration: (\\d+):(\\d+):(\\d+\\.\\d+)");
        for (const QString& name : videos()) {
            const QString path = QDir(media_).filePath(name);
            QProcess p;
            p.start(discoverer, {path});
            QVERIFY(p.waitForFinished(60000));
            const QString report = QString::fromUtf8(p.readAllStandardOutput());
            QVERIFY2(p.exitCode() == 0 && report.contains("video #"), qPrintable(name + report));
            QVERIFY2(report.contains("Width: 320") && report.contains("Height: 240"), qPrintable(report));
            const auto m = duration.match(report);
            QVERIFY2(m.hasMatch(), qPrintable(report));
            const double seconds =
                m.captured(1).toDouble() * 3600 + m.captured(2).toDouble() * 60 + m.captured(3).toDouble();
            const AviFile avi = readAvi(readFile(path));
            const double expected = avi.totalFrames * avi.microSecPerFrame / 1e6;
            QVERIFY2(
                std::abs(seconds - expected) < 0.1,
                qPrintable(QStringLiteral("%1: %2 s, expected %3 s").arg(name).arg(seconds).arg(expected)));
        }
    }

    void shippedSchemesPlayTheRenderedMedia() {
        tarvo::SettingsStore settings(*store_);
        QCOMPARE(tarvo::readSchemeList(settings), kSchemes);

        QSet<QString> used;
        for (const QString& scheme : kSchemes) {
            tarvo::ExerciseTable table;
            tarvo::LoadScheme(settings, table, scheme);
            QSet<QString> inScheme;
            for (int i = 1; i <= table.ExerciseCount; ++i) {
                const tarvo::ExerciseRecord& e = table.Exercises[static_cast<size_t>(i)];
                const QString where =
                    scheme + QLatin1Char(' ') + QString::number(i) + QLatin1Char(' ') + e.File;
                QVERIFY2(QFileInfo::exists(QDir(media_).filePath(e.File)), qPrintable(where));
                QVERIFY2(QFileInfo::exists(QStringLiteral(TARVO_PROGRAM_DIR "/") + e.File),
                         qPrintable(where));
                QVERIFY2(!inScheme.contains(e.File), qPrintable(where));
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
        const ProgramRun r = run("tarvomultimedia", {folder});
        QCOMPARE(r.status, 1);
        QVERIFY2(r.err.contains("cannot write") && r.err.contains(folder), qPrintable(r.err));
        QCOMPARE(mediaIn(scratch.path()), QStringList{"blocker"});

        QCOMPARE(run("tarvomultimedia", {"--bogus"}).status, 2);
        QCOMPARE(run("tarvomultimedia", {media_, media_}).status, 2);
    }

    // One telling frame of every medium with its caption, for a person to judge the drawings.
    void contactSheet() {
        std::map<QString, QString> captions{{"title.avi", tarvo::titleExercise().Caption}};
        tarvo::SettingsStore settings(*store_);
        for (const QString& scheme : kSchemes) {
            tarvo::ExerciseTable table;
            tarvo::LoadScheme(settings, table, scheme);
            for (int i = 1; i <= table.ExerciseCount; ++i)
                captions[table.Exercises[size_t(i)].File] = table.Exercises[size_t(i)].Caption;
        }
        QStringList names = mediaIn(media_);
        names.move(names.indexOf("title.avi"), 0);
        const int columns = 4, width = 320, height = 240 + 40;
        QImage sheet(columns * width, int((names.size() + columns - 1) / columns) * height,
                     QImage::Format_RGB32);
        sheet.fill(Qt::white);
        QPainter painter(&sheet);
        QFont font("DejaVu Sans");
        font.setPixelSize(12);
        painter.setFont(font);
        QImage upscaled;
        for (int i = 0; i < names.size(); ++i) {
            const QString path = QDir(media_).filePath(names[i]);
            // A video by the frame half way through its loop, where the movement is furthest along.
            const std::vector<QByteArray> frames = names[i].endsWith(QLatin1String(".avi"))
                                                       ? readAvi(readFile(path)).frames
                                                       : std::vector<QByteArray>();
            const QImage frame =
                frames.empty() ? QImage(path) : QImage::fromData(frames[frames.size() / 2], "JPG");
            QVERIFY2(!frame.isNull(), qPrintable(names[i]));
            const QPoint at((i % columns) * width, (i / columns) * height);
            painter.drawImage(at, frame);
            const auto caption = captions.find(names[i]);
            painter.drawText(QRect(at + QPoint(6, 242), QSize(width - 12, 36)), Qt::TextWordWrap,
                             names[i] + QStringLiteral(": ") +
                                 (caption != captions.end() ? caption->second : "(in no scheme)"));
            if (names[i] == QLatin1String("shoulderroll.avi"))
                upscaled = frame.scaled(960, 720, Qt::IgnoreAspectRatio, Qt::SmoothTransformation);
        }
        painter.end();
        const QString folder = QStringLiteral(TARVO_SCREENSHOT_DIR);
        QVERIFY(QDir().mkpath(folder));
        QVERIFY(sheet.save(folder + "/exercise_media.png"));
        QVERIFY(!upscaled.isNull() && upscaled.save(folder + "/exercise_media_960x720.png"));
    }

    void existingFilesAreLeftAlone() {
        const QDir media(media_);
        std::map<QString, QDateTime> before;
        for (const QString& name : mediaIn(media_))
            before[name] = QFileInfo(media.filePath(name)).lastModified();
        // A clip of the user's own in place of a built-in one, and a built-in one gone missing.
        const QString own = media.filePath("neckturn.avi");
        {
            QFile f(own);
            QVERIFY(f.open(QIODevice::WriteOnly | QIODevice::Truncate));
            f.write("my own clip");
            QVERIFY(f.setFileTime(QDateTime(QDate(2001, 2, 3), QTime(4, 5, 6)),
                                  QFileDevice::FileModificationTime));
        }
        const QDateTime ownTime = QFileInfo(own).lastModified();
        QVERIFY(QFile::remove(media.filePath("shrug.avi")));

        const ProgramRun r = run("tarvomultimedia", {media_});
        QVERIFY2(r.status == 0, qPrintable(r.err));
        QCOMPARE(readFile(own), QByteArray("my own clip"));
        QCOMPARE(QFileInfo(own).lastModified(), ownTime);
        QVERIFY(readAvi(readFile(media.filePath("shrug.avi"))).errors.isEmpty());
        QStringList expected;
        for (const auto& [name, time] : before) {
            expected << name;
            if (name != QLatin1String("neckturn.avi") && name != QLatin1String("shrug.avi"))
                QVERIFY2(QFileInfo(media.filePath(name)).lastModified() == time, qPrintable(name));
        }
        QCOMPARE(mediaIn(media_), expected); // and no temporary files left behind
    }
};

QTEST_MAIN(TestTarvoMultimedia)
#include "tst_tarvomultimedia.moc"
