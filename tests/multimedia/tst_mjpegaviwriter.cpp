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
        QCOMPARE(avi.streams, 1u);
        QVERIFY(avi.flags & 0x10); // has an index
        QCOMPARE(avi.width, 320u);
        QCOMPARE(avi.height, 240u);
        QCOMPARE(avi.bitmapWidth, 320);
        QCOMPARE(avi.bitmapHeight, 240);
        QCOMPARE(avi.streamType, QByteArray("vids"));
        QCOMPARE(avi.handler, QByteArray("MJPG"));
        QCOMPARE(avi.compression, QByteArray("MJPG"));
        QVERIFY(avi.suggestedBufferSize >= 2000 + 8);

        QCOMPARE(avi.index.size(), size_t(3));
        for (size_t i = 0; i < frames.size(); ++i) {
            QCOMPARE(avi.index[i].id, QByteArray("00dc"));
            QCOMPARE(avi.index[i].flags, 0x10u); // every frame is a key frame
            QCOMPARE(avi.index[i].size, static_cast<std::uint32_t>(frames[i].size()));
        }
        QCOMPARE(avi.index[0].offset, 4u); // right after the 'movi' type code
    }

    void theReaderCatchesDamage() {
        // A reader that accepted anything would let the checks above pass on a broken writer.
        MjpegAviWriter writer(QSize(64, 48), 10);
        writer.addFrame(QByteArray(11, 'x'));
        writer.addFrame(QByteArray(12, 'y'));
        const QByteArray good = writer.toAvi();
        QVERIFY(readAvi(good).errors.isEmpty());

        QByteArray truncated = good.left(good.size() - 6);
        QVERIFY(!readAvi(truncated).errors.isEmpty());

        QByteArray badIndex = good;
        const qsizetype idx1 = badIndex.lastIndexOf("idx1");
        badIndex[idx1 + 8 + 8] = 6; // the first entry's offset, no longer at a chunk
        QVERIFY(!readAvi(badIndex).errors.isEmpty());

        // Without the pad byte after the odd-sized frame (and with sizes that agree), the reader, which
        // skips the pad byte, lands one byte into the next chunk.
        QByteArray unpadded = good;
        const qsizetype first = unpadded.indexOf("00dc");
        unpadded.remove(first + 8 + 11, 1);
        auto shrink = [&](qsizetype at) {
            qToLittleEndian(qFromLittleEndian<quint32>(unpadded.constData() + at) - 1, unpadded.data() + at);
        };
        shrink(4);                            // RIFF
        shrink(unpadded.indexOf("movi") - 4); // LIST 'movi'
        QVERIFY(!readAvi(unpadded).errors.isEmpty());
    }

    void refusesAVideoWithoutSizeOrRate() {
        QVERIFY_THROWS_EXCEPTION(std::invalid_argument, MjpegAviWriter(QSize(0, 240), 12));
        QVERIFY_THROWS_EXCEPTION(std::invalid_argument, MjpegAviWriter(QSize(320, 240), 0));
    }
};

QTEST_GUILESS_MAIN(TestMjpegAviWriter)
#include "tst_mjpegaviwriter.moc"
