// A second process for the store tests.
//   store_writer <file> keys <prefix> <count>   writes <count> keys "<prefix>N" one write at a time
//   store_writer <file> churn                   rewrites one large value, generation after generation,
//                                               until killed; prints "ready" after the first write
#include "platform/linux/FileRegistryStore.h"

#include <QCoreApplication>

#include <cstdio>

using namespace tarvo;

int main(int argc, char** argv) {
    QCoreApplication app(argc, argv);
    const QStringList args = app.arguments();
    if (args.size() < 3)
        return 2;
    FileRegistryStore store(args[1]);
    if (args[2] == QLatin1String("keys") && args.size() == 5) {
        const int count = args[4].toInt();
        for (int i = 0; i < count; ++i)
            store.setValue(QStringLiteral("Race"), args[3] + QString::number(i), QString::number(i));
        return 0;
    }
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
