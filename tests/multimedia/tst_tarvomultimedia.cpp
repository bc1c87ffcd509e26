// The media generator. Its movements: key poses and easing, where the arms end up, and the catalogue
// checked frame by frame (every clip moves, loops without a jump and keeps its subject in the picture).
// And the real tarvomultimedia program: it renders every built-in medium into a folder, and what it
// writes is read back by our own strict AVI reader and by Qt's image readers; the shipped schemes,
// imported by the real regedit, name exactly those files.
#include "engine/ExerciseTable.h"
#include "engine/SchemeStore.h"
#include "multimedia/Body.h"
#include "multimedia/Catalogue.h"
#include "multimedia/FrameRenderer.h"
#include "multimedia/MediumEncoder.h"
#include "platform/linux/FileRegistryStore.h"
#include "settings/SettingsStore.h"
#include "support/AviReader.h"
#include "support/Programs.h"

#include <QDir>
#include <QTemporaryDir>
#include <QtTest>

#include <cmath>
#include <set>

using namespace tarvo;

namespace {

const QStringList kSchemes{"*Short Break", "*Medium Break", "*Long Break"};

QStringList mediaIn(const QString& folder) {
    return QDir(folder).entryList(QDir::Files | QDir::Hidden, QDir::Name);
}

// The points whose paths show the movement: head and face, the pupils and upper lids, shoulders,
// elbows, wrists and finger tips (which curl towards the palm as the hand closes).
std::vector<QVector3D> joints(const Pose& pose) {
    const Body b = bodyFor(pose);
    const float r = proportions::headRadius;
    std::vector<QVector3D> j{
        b.headCentre, b.headCentre + b.head.rotatedVector({0, 0, r}),
        b.headCentre + b.head.rotatedVector(QVector3D(b.gazeX * 0.07f, b.gazeY * 0.055f, 0.93f) * r),
        b.headCentre + b.head.rotatedVector(QVector3D(0, 0.06f + 0.11f * b.eyesOpen, 0.93f) * r)};
    for (const Arm& a : b.arms) {
        const Hand& h = a.hand;
        const float curl = 1.3f * std::max(-h.open, 0.0f);
        const QVector3D tip = h.wrist + h.fingers * 7.5f +
                              (h.fingers * std::cos(curl) + h.palm * std::sin(curl)) * 7 +
                              h.thumbSide * (3 * std::max(h.open, 0.0f));
        j.insert(j.end(), {a.shoulder, a.elbow, h.wrist, tip});
    }
    return j;
}

float largestMove(const Pose& a, const Pose& b) {
    const auto ja = joints(a), jb = joints(b);
    float largest = 0;
    for (size_t i = 0; i < ja.size(); ++i)
        largest = std::max(largest, (ja[i] - jb[i]).length());
    return largest;
}

} // namespace

class TestMultimedia : public QObject {
    Q_OBJECT

private:
    QTemporaryDir dir_;
    QString media_;

    ProgramRun run(QStringList args) { return runProgram("tarvomultimedia", args, dir_.path(), 240000); }
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

    void movesThroughKeysAndLoops() {
        const auto turned = [](float degrees) {
            Pose p;
            p.headTurn = degrees;
            return p;
        };
        const Motion m(
            {{turned(0), 1.0f, 2.0f}, {turned(30), 0.5f, 1.0f, Ease::Linear}, {turned(-20), 0, 1.5f}});
        QCOMPARE(m.period(), 6.0f);
        QCOMPARE(m.at(0.9f).headTurn, 0.0f);      // held
        QCOMPARE(m.at(2.0f).headTurn, 15.0f);     // half way, eased symmetrically
        QVERIFY(m.at(1.4f).headTurn < 0.2f * 30); // eased: slow off the mark
        QCOMPARE(m.at(3.2f).headTurn, 30.0f);     // held at the second key
        QCOMPARE(m.at(4.0f).headTurn, 5.0f);      // linear: half way from 30 to -20
        QCOMPARE(m.at(8.0f).headTurn, m.at(2.0f).headTurn);
        QCOMPARE(m.at(-1.0f).headTurn, m.at(5.0f).headTurn);

        QVERIFY_THROWS_EXCEPTION(std::invalid_argument, Motion({}));
        QVERIFY_THROWS_EXCEPTION(std::invalid_argument, Motion({{Pose{}, -1.0f, 1.0f}}));

        // Every easing starts and ends in place, clamps outside its move and never goes back.
        for (Ease e : {Ease::Smooth, Ease::Linear, Ease::In, Ease::Out}) {
            QVERIFY(eased(e, 0) == 0 && eased(e, -3) == 0 && std::abs(eased(e, 1) - 1) < 1e-6f &&
                    std::abs(eased(e, 4) - 1) < 1e-6f);
            for (int i = 1; i <= 20; ++i)
                QVERIFY(eased(e, float(i) / 20) >= eased(e, float(i - 1) / 20));
        }
        QVERIFY(eased(Ease::In, 0.1f) < 0.1f && eased(Ease::Out, 0.1f) > 0.1f);
    }

    void armsReachWhereTheyAreTold() {
        const QVector3D shoulder(17, 41, 0), wrist(12, 27, 40);
        const QVector3D elbow = elbowBetween(shoulder, wrist, {1, -1, 0}, 27, 25);
        QVERIFY(std::abs((elbow - shoulder).length() - 27) < 1e-3f);
        QVERIFY(std::abs((wrist - elbow).length() - 25) < 1e-3f);
        QVERIFY(elbow.x() > shoulder.x()); // bent out to the side asked for
        const QVector3D straight = elbowBetween(shoulder, {17, 41, 100}, {1, -1, 0}, 27, 25);
        QVERIFY((straight - QVector3D(17, 41, 27)).length() < 1e-3f);

        // One description serves both arms: mirrored, with the thumbs on the inner side.
        const Body b = bodyFor(Pose{});
        const Hand& left = b.arms[LeftSide].hand;
        const Hand& right = b.arms[RightSide].hand;
        QVERIFY((left.wrist - QVector3D(12, 27, 40)).length() < 1e-3f &&
                (right.wrist - QVector3D(-12, 27, 40)).length() < 1e-3f);
        QVERIFY(left.thumbSide.x() < 0 && right.thumbSide.x() > 0);
        for (const Hand& h : {left, right})
            QVERIFY(std::abs(QVector3D::dotProduct(h.fingers, h.palm)) < 1e-4f &&
                    std::abs(h.thumbSide.length() - 1) < 1e-4f);

        // The hands go with the upper body when it turns.
        Pose twisted;
        twisted.twist = 90;
        const Body t = bodyFor(twisted);
        QVERIFY((t.arms[LeftSide].hand.wrist - QVector3D(40, 27, -12)).length() < 1e-3f);
        QVERIFY(t.headCentre.x() > 0 && std::abs(t.headCentre.z()) < 3);
    }

    // Every medium has a file of its own, keeps its named parts whole in the picture all through, and,
    // as a video, moves and loops without a jump, its frames drawn from the pose of the moment and the
    // same moment always drawn alike; a picture holds one pose.
    void everyClipMovesLoopsAndStaysInThePicture() {
        const QRectF picture(QPointF(1, 1), QSizeF(kMediaSize) - QSizeF(2, 2));
        std::set<QString> names;
        for (const Medium& m : builtInMedia()) {
            // With no parts to keep in the picture, nothing below would be checked.
            QVERIFY2(names.insert(m.file).second && (m.isVideo() || m.file.endsWith(QLatin1String(".bmp"))) &&
                         !m.keepInFrame.empty(),
                     qPrintable(m.file));
            QVERIFY2(m.isVideo() ? m.motion.period() >= 1 && m.motion.period() <= 12
                                 : m.motion.keys().size() == 1,
                     qPrintable(m.file));
            const int frames = m.isVideo() ? frameCountOf(m) : 1;
            const float step = m.motion.period() / static_cast<float>(frames);
            float largestStep = 0, farthest = 0, farthestAt = 0; // farthest from the first pose
            for (int i = 0; i < frames; ++i) {
                const float t = step * static_cast<float>(i);
                for (Anchor a : m.keepInFrame)
                    QVERIFY2(
                        picture.contains(anchorBounds(m, t, a)),
                        qPrintable(QStringLiteral("%1 at %2 s: part %3").arg(m.file).arg(t).arg(int(a))));
                if (i > 0)
                    largestStep = std::max(largestStep, largestMove(m.motion.at(t - step), m.motion.at(t)));
                if (const float d = largestMove(m.motion.at(0), m.motion.at(t)); d > farthest)
                    std::tie(farthest, farthestAt) = std::pair(d, t);
            }
            if (!m.isVideo())
                continue;
            QVERIFY2(farthest > 0.5f, qPrintable(m.file + " does not move"));
            // From the last frame back to the first is one more ordinary step: the loop shows no jump.
            const float wrap =
                largestMove(m.motion.at(step * static_cast<float>(frames - 1)), m.motion.at(0));
            QVERIFY2(wrap <= largestStep * 1.2f + 0.01f,
                     qPrintable(QStringLiteral("%1 jumps by %2 cm when it loops").arg(m.file).arg(wrap)));
            const QImage first = renderFrame(m, 0);
            QVERIFY2(first != renderFrame(m, farthestAt) && first == renderFrame(m, 0), qPrintable(m.file));
        }
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
        QVERIFY2(total < 20'000'000 && oddFrame, qPrintable(QString::number(total)));
    }

    void shippedSchemesPlayTheRenderedMedia() {
        FileRegistryStore store(dir_.filePath("config/tarvo/registry.reg"));
        SettingsStore settings(store);
        QCOMPARE(readSchemeList(settings), kSchemes);
        QSet<QString> used;
        for (const QString& scheme : kSchemes) {
            ExerciseTable table;
            LoadScheme(settings, table, scheme);
            QSet<QString> inScheme;
            for (int i = 1; i <= table.ExerciseCount; ++i) {
                const ExerciseRecord& e = table.Exercises[static_cast<size_t>(i)];
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
        QStringList rendered = mediaIn(media_);
        QVERIFY(rendered.removeOne("title.avi"));
        QCOMPARE(used, QSet<QString>(rendered.begin(), rendered.end()));
        QVERIFY(used.size() >= 16);
    }

    // A folder that cannot be written is named and left clean, and wrong arguments are refused. In the
    // folder of media, a clip of the user's own in place of a built-in one is kept, and a built-in one
    // gone missing is made again. (That the files there are not touched at all, the installed program's
    // test shows.)
    void takesTheFolderAsItIs() {
        // Root may write anywhere, so the folder is made impossible: its parent is a file.
        QTemporaryDir scratch;
        QVERIFY(writeFile(scratch.filePath("blocker"), {}));
        const QString folder = scratch.filePath("blocker/media");
        ProgramRun r = run({folder});
        QCOMPARE(r.status, 1);
        QVERIFY2(r.err.contains("cannot write") && r.err.contains(folder), qPrintable(r.err));
        QCOMPARE(mediaIn(scratch.path()), QStringList{"blocker"});

        QCOMPARE(run({"--bogus"}).status, 2);
        QCOMPARE(run({media_, media_}).status, 2);

        const QStringList before = mediaIn(media_);
        QVERIFY(writeFile(medium("neckturn.avi"), "my own clip") && QFile::remove(medium("shrug.avi")));
        r = run({media_});
        QVERIFY2(r.status == 0, qPrintable(r.err));
        QCOMPARE(readFile(medium("neckturn.avi")), QByteArray("my own clip"));
        QVERIFY(readAvi(readFile(medium("shrug.avi"))).errors.isEmpty());
        QCOMPARE(mediaIn(media_), before); // and no temporary files left behind
    }
};

QTEST_MAIN(TestMultimedia)
#include "tst_tarvomultimedia.moc"
