#pragma once

#include <QDateTime>
#include <QString>

#include <cstdint>
#include <functional>

namespace tarvo {

// What the history's file holds of one event: its time in milliseconds since the epoch (UTC) with the
// offset from UTC in force where it happened, and its kind, outcome and details as text.
struct StoredRow {
    std::int64_t atMs = 0;
    int utcOffset = 0; // seconds east of UTC
    QString kind;
    QString outcome;
    std::int64_t seconds = 0;
    QString details;
};

// The history's file, as the module that knows SQLite keeps it (modules/history-store.so in the program
// folder). The program loads the module only around its use and unloads it after, with Qt SQL, its
// SQLite driver and SQLite: so nothing the program keeps may point into the module. The program copies
// every text it is given here before the module goes, and the module registers no types with Qt.
class HistoryStore {
public:
    // Why the last operation failed; Busy and NoSpace may pass, the others stay for the run.
    enum class Failure { None, Busy, NoSpace, CannotWrite, Newer, NoDriver, Other };

    virtual ~HistoryStore() = default;

    virtual bool open(const QDateTime& now, const QDateTime& pruneBefore) = 0;
    virtual bool isOpen() const = 0;
    virtual void close() = 0;
    virtual bool append(const StoredRow& row) = 0;
    virtual bool clear() = 0;
    virtual bool forEach(const QDateTime& from, const std::function<void(const StoredRow&)>& visit) = 0;

    virtual Failure failure() const = 0;
    virtual QString problem() const = 0;
    virtual QString setAsidePath() const = 0;
};

// The module's one exported function: a new store for the file at `path`, which the caller deletes
// before it unloads the module.
using CreateHistoryStore = HistoryStore* (*)(const QString& path);
inline constexpr char kCreateHistoryStore[] = "tarvo_create_history_store";
// In a folder of its own below the program folder: a library straight in /usr/lib/<package> makes the
// package's installation run ldconfig, which has nothing to do for it.
inline constexpr char kHistoryStoreModule[] = "modules/history-store.so";
// The layout the module writes (SQLite's user_version); a file of a later one is not written.
inline constexpr int kHistorySchemaVersion = 2;

} // namespace tarvo
