#pragma once

#include "engine/HistoryRecorder.h"
#include "history/HistoryStore.h"

#include <QString>

#include <cstdint>
#include <functional>
#include <memory>
#include <vector>

namespace tarvo {

// One event as the history keeps it: its time in milliseconds since the epoch (UTC) with the offset
// from UTC that was in force where it happened.
struct StoredEvent {
    std::int64_t atMs = 0;
    int utcOffset = 0; // seconds east of UTC
    HistoryKind kind = HistoryKind::Startup;
    QString outcome;
    std::int64_t seconds = 0;
    QString details;

    QDateTime at() const; // in the offset it happened in
};

// The break history's file at `path`, kept by the store module in `programFolder` (HistoryStore.h),
// which is loaded at the first use and unloaded by unloadModule(), taking Qt SQL, its SQLite driver and
// SQLite out of memory with it. Here the program's events become the store's rows and back; what the
// file holds and how it fails is the store's.
//
// Everything the module hands over is copied here before it is kept: a text may lie in the module's own
// memory, which is gone once it is unloaded.
class HistoryDatabase {
public:
    using Failure = HistoryStore::Failure;

    HistoryDatabase(QString path, const QString& programFolder);
    ~HistoryDatabase();
    HistoryDatabase(const HistoryDatabase&) = delete;
    HistoryDatabase& operator=(const HistoryDatabase&) = delete;

    // Opens the file (creating it and its folder when missing), brings its layout up to date and deletes
    // the events from before `pruneBefore` (none when it is invalid). False when the history cannot be
    // written; failure() and problem() say why. `now` names a damaged file that is set aside.
    bool open(const QDateTime& now, const QDateTime& pruneBefore = {});
    bool isOpen() const { return store_ && store_->isOpen(); }
    void close();
    // Closes the file and unloads the module; open() loads it again.
    void unloadModule();

    bool append(const HistoryEvent& event);
    bool clear();
    // Every event from `from` on (all of them for an invalid `from`), by time, to `visit`.
    bool forEach(const QDateTime& from, const std::function<void(const StoredEvent&)>& visit);
    std::vector<StoredEvent> eventsSince(const QDateTime& from);

    Failure failure() const { return failure_; }
    // What went wrong, for the user ("the file is in use by another program"); empty when nothing did.
    QString problem() const { return problem_; }
    // Set once a damaged file has been set aside: where it now is.
    QString setAsidePath() const { return setAside_; }
    QString path() const { return path_; }

private:
    bool load();
    bool took(bool done);

    QString path_;
    QString moduleFile_;
    void* module_ = nullptr; // the module's handle while it is loaded
    std::unique_ptr<HistoryStore> store_;
    Failure failure_ = Failure::None;
    QString problem_;
    QString setAside_;
};

} // namespace tarvo
