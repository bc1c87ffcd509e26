// Measures the settings store: loading every option from a store that also holds 40 schemes of 20
// exercises each (file read and parse included, as at start-up), and one write including the flush
// to disk. Prints medians over repeated runs.
#include "platform/linux/FileRegistryStore.h"
#include "settings/LoadAndCommit.h"

#include <QCoreApplication>
#include <QFileInfo>
#include <QTemporaryDir>
#include <QTextStream>

#include <algorithm>
#include <chrono>
#include <vector>

using namespace tarvo;
using Clock = std::chrono::steady_clock;

namespace {

double medianMs(std::vector<double> v) {
    std::sort(v.begin(), v.end());
    return v[v.size() / 2];
}

double msSince(Clock::time_point start) {
    return std::chrono::duration<double, std::milli>(Clock::now() - start).count();
}

} // namespace

int main(int argc, char** argv) {
    QCoreApplication app(argc, argv);
    QTextStream out(stdout);
    QTemporaryDir dir;
    const QString path = dir.filePath(QStringLiteral("registry.reg"));
    {
        FileRegistryStore store(path);
        StoreBatch batch(store);
        for (int s = 1; s <= 40; ++s) {
            const QString section = QStringLiteral("Scheme*Bench %1").arg(s);
            for (int i = 1; i <= 20; ++i) {
                const QString k = QString::number(i);
                store.setValue(section, k + QLatin1Char('y'), QStringLiteral("1"));
                store.setValue(section, k + QLatin1Char('s'), QStringLiteral("30"));
                store.setValue(section, k, QStringLiteral("exercise%1.avi").arg(i));
                store.setValue(section, k + QLatin1Char('d'),
                               QStringLiteral("Roll your shoulders slowly backwards"));
            }
            store.setValue(section, QStringLiteral("Num"), QStringLiteral("20"));
            store.setValue(QStringLiteral("Schemes"), QString::number(s), QStringLiteral("*Bench %1").arg(s));
        }
        SettingsStore settings(store);
        commitSettings(settings, SettingsRecord{});
        batch.finish();
    }

    constexpr int kRuns = 50;
    std::vector<double> loads, writes;
    for (int run = 0; run < kRuns; ++run) {
        const auto start = Clock::now();
        FileRegistryStore store(path); // a fresh store reads and parses the whole file, as start-up does
        SettingsStore settings(store);
        SettingsRecord record;
        loadAllSettings(settings, record);
        loads.push_back(msSince(start));
    }
    FileRegistryStore store(path);
    for (int run = 0; run < kRuns; ++run) {
        const auto start = Clock::now();
        store.setValue(QStringLiteral("Options"), QStringLiteral("tray"), QString::number(run));
        writes.push_back(msSince(start));
    }
    out << "store file: " << QFileInfo(path).size() / 1024 << " KiB, " << kRuns << " runs each\n";
    out << "load all settings (fresh store, 40 schemes x 20 exercises): median " << medianMs(loads)
        << " ms\n";
    out << "one write including flush to disk: median " << medianMs(writes) << " ms\n";
    return 0;
}
