// Letting go of read-only file pages: a mapping only read gives its resident pages up and reads the
// same bytes again afterwards; a private mapping written before it was made read-only (as the loader
// does with relocated data) keeps its pages and what was written.
#include "platform/linux/ResidentPages.h"

#include <QTemporaryFile>
#include <QtTest>

#include <sys/mman.h>
#include <unistd.h>

using namespace tarvo;

namespace {

constexpr int kPages = 16, kPage = 4096;

// The resident kilobytes of the mapping that starts at the address, as the kernel counts them.
int residentKb(const void* start) {
    QFile smaps(QStringLiteral("/proc/self/smaps"));
    if (!smaps.open(QIODevice::ReadOnly))
        return -1;
    const QByteArray heading = QByteArray::number(reinterpret_cast<quintptr>(start), 16) + '-';
    bool inside = false;
    for (const QByteArray& line : smaps.readAll().split('\n')) {
        if (line.left(line.indexOf(' ')).contains('-')) // a mapping's heading line: "start-end perms ..."
            inside = line.startsWith(heading);
        if (inside && line.startsWith("Rss:"))
            return line.mid(4).trimmed().split(' ').first().toInt();
    }
    return -1;
}

} // namespace

class TestResidentPages : public QObject {
    Q_OBJECT

private slots:
    void onlyPagesThatWereOnlyRead() {
        QTemporaryFile file;
        QVERIFY(file.open());
        // On the disk, as a library's file is: a page cache page still to be written counts as dirty.
        QVERIFY(file.write(QByteArray(kPages * kPage, 'x')) == kPages * kPage && file.flush());
        QCOMPARE(fsync(file.handle()), 0);
        auto* read =
            static_cast<char*>(mmap(nullptr, kPages * kPage, PROT_READ, MAP_PRIVATE, file.handle(), 0));
        auto* written = static_cast<char*>(
            mmap(nullptr, kPages * kPage, PROT_READ | PROT_WRITE, MAP_PRIVATE, file.handle(), 0));
        QVERIFY(read != MAP_FAILED && written != MAP_FAILED);
        int sum = 0;
        for (int i = 0; i < kPages * kPage; i += kPage)
            sum += read[i] + written[i];
        written[0] = 'y';
        written[5 * kPage] = 'z';
        QCOMPARE(mprotect(written, kPages * kPage, PROT_READ), 0);
        QCOMPARE(residentKb(read), kPages * kPage / 1024);
        QCOMPARE(residentKb(written), kPages * kPage / 1024);

        QVERIFY(releaseReadOnlyFilePages() >= kPages * kPage / 1024);
        QCOMPARE(residentKb(read), 0);
        QCOMPARE(residentKb(written), kPages * kPage / 1024);
        QCOMPARE(written[0], 'y');
        QCOMPARE(written[5 * kPage], 'z');
        QCOMPARE(read[7 * kPage], 'x'); // back from the file at its first touch
        QVERIFY(sum > 0);
        munmap(read, kPages * kPage);
        munmap(written, kPages * kPage);
    }
};

QTEST_GUILESS_MAIN(TestResidentPages)
#include "tst_residentpages.moc"
