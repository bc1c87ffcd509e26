// The other writer of the store tests: store_writer <file> <key> writes n, n + 1, ... to <key> of
// "Race", starting above what the key holds, one write at a time, and prints each n once its write is
// done, until an alarm kills it at a random moment 30 to 300 ms on.
#include "platform/linux/FileRegistryStore.h"

#include <QCoreApplication>
#include <QRandomGenerator>

#include <cstdio>
#include <unistd.h>

int main(int argc, char** argv) {
    QCoreApplication app(argc, argv);
    const QStringList args = app.arguments();
    if (args.size() != 3)
        return 2;
    tarvo::FileRegistryStore store(args[1]);
    ::ualarm(static_cast<useconds_t>(QRandomGenerator::global()->bounded(30000, 300000)), 0);
    const QString race = QStringLiteral("Race");
    for (qint64 n = store.value(race, args[2]).value_or(QString()).toLongLong() + 1;; ++n) {
        store.setValue(race, args[2], QString::number(n));
        std::printf("%lld\n", n);
        std::fflush(stdout);
    }
}
