// The AVI writer against our own strict reader: structure, sizes, padding and the index, with frames
// of odd and even sizes.
#include "multimedia/MjpegAviWriter.h"
#include "support/AviReader.h"

#include <QtTest>

using namespace tarvo;

class TestMjpegAviWriter : public QObject {
    Q_OBJECT

private slots:
    void framesComeBackThroughHeadersAndIndex() {
        // Odd sizes need a pad byte after the chunk; the reader fails on any chunk at an odd offset.
        const std::vector<QByteArray> frames{QByteArray(1001, 'a'), QByteArray(2000, 'b'),
                                             QByteArray(7, 'c')};
        MjpegAviWriter writer(QSize(320, 240), 12);
        for (const QByteArray& f : frames)
            writer.addFrame(f);
        QCOMPARE(writer.frameCount(), 3);
        const QByteArray bytes = writer.toAvi();
        QCOMPARE(bytes.size() % 2, 0);

        const AviFile avi = readAvi(bytes);
        QVERIFY2(avi.errors.isEmpty(), qPrintable(avi.errors.join(QLatin1Char('\n'))));
        QCOMPARE(avi.frames, frames);
        QCOMPARE(avi.totalFrames, 3u);
        QCOMPARE(avi.length, 3u);
        QCOMPARE(avi.microSecPerFrame, 83333u);
        QCOMPARE(avi.rate / avi.scale, 12u);
        QVERIFY(avi.flags & 0x10); // has an index
        QVERIFY(avi.width == 320 && avi.height == 240 && avi.bitmapWidth == 320 && avi.bitmapHeight == 240);
        QVERIFY(avi.streams == 1 && avi.streamType == "vids" && avi.handler == "MJPG" &&
                avi.compression == "MJPG");
        QVERIFY(avi.suggestedBufferSize >= 2000 + 8);

        QCOMPARE(avi.index.size(), size_t(3));
        for (size_t i = 0; i < frames.size(); ++i) {
            QCOMPARE(avi.index[i].id, QByteArray("00dc"));
            QCOMPARE(avi.index[i].flags, 0x10u); // every frame is a key frame
            QCOMPARE(avi.index[i].size, static_cast<std::uint32_t>(frames[i].size()));
        }
        QCOMPARE(avi.index[0].offset, 4u); // right after the 'movi' type code
    }

    void refusesAVideoWithoutSizeOrRate() {
        QVERIFY_THROWS_EXCEPTION(std::invalid_argument, MjpegAviWriter(QSize(0, 240), 12));
        QVERIFY_THROWS_EXCEPTION(std::invalid_argument, MjpegAviWriter(QSize(320, 240), 0));
    }
};

QTEST_GUILESS_MAIN(TestMjpegAviWriter)
#include "tst_mjpegaviwriter.moc"
