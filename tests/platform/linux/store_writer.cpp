// A second process for the store tests.
//   store_writer <file> ack <prefix> <first>    writes n = first, first + 1, ... as key "<prefix><n % 16>"
//                                               of "Race", one write at a time, and prints each n once
//                                               its write is done; runs until killed
//   store_writer <file> read <ms>               reads the whole store again and again for <ms>
//                                               milliseconds; fails when a read throws or a value goes
//                                               back or disappears; prints the reads and the failures
//   store_writer <file> churn                   rewrites one large value, generation after generation,
//                                               until killed; prints "ready" after the first write
#include "platform/linux/FileRegistryStore.h"

#include <QCoreApplication>
#include <QElapsedTimer>
#include <QThread>

#include <cstdio>
#include <map>

using namespace tarvo;

namespace {

// Every value the writers and the imports write is a number that only grows, key by key. The values of
// one read may come from different versions of the file, as the store reads it again once it changed.
int readUnderFire(const QString& path, int milliseconds) {
    std::map<QString, qint64> last;
    long reads = 0;
    int failures = 0;
    const auto failure = [&](const QString& what) {
        if (++failures <= 5)
            std::fprintf(stderr, "read %ld: %s\n", reads, qPrintable(what));
    };
    QElapsedTimer clock;
    clock.start();
    while (clock.elapsed() < milliseconds) {
        ++reads;
        try {
            FileRegistryStore store(path); // a fresh object: every read parses the file
            std::map<QString, qint64> now;
            for (const QString& section : {QStringLiteral("Race"), QStringLiteral("Regedit")})
                for (const QString& key : store.keys(section))
                    now[section + '/' + key] = store.value(section, key).value_or(QString()).toLongLong();
            for (const auto& [key, value] : last)
                if (const auto it = now.find(key); it == now.end() || it->second < value)
                    failure(QStringLiteral("%1 went back from %2").arg(key).arg(value));
            last = std::move(now);
        } catch (const StoreError& e) {
            failure(e.message());
        }
        QThread::msleep(2); // leaves the writers the processor
    }
    std::printf("%ld %d\n", reads, failures);
    return failures == 0 ? 0 : 1;
}

} // namespace

int main(int argc, char** argv) {
    QCoreApplication app(argc, argv);
    const QStringList args = app.arguments();
    if (args.size() < 3)
        return 2;
    FileRegistryStore store(args[1]);
    if (args[2] == QLatin1String("ack") && args.size() == 5) {
        for (qint64 n = args[4].toLongLong();; ++n) {
            store.setValue(QStringLiteral("Race"), args[3] + QString::number(n % 16), QString::number(n));
            std::printf("%lld\n", n);
            std::fflush(stdout);
        }
    }
    if (args[2] == QLatin1String("read") && args.size() == 4)
        return readUnderFire(args[1], args[3].toInt());
    if (args[2] == QLatin1String("churn")) {
        // Each generation's value is one digit repeated: a file mixing two generations would show it.
        for (int generation = 0;; ++generation) {
            const QChar digit = QLatin1Char(static_cast<char>('0' + generation % 10));
            store.setValue(QStringLiteral("Churn"), QStringLiteral("payload"), QString(4 << 20, digit));
            if (generation == 0) {
                std::puts("ready");
                std::fflush(stdout);
            }
        }
    }
    return 2;
}
