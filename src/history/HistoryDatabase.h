#pragma once

#include "engine/HistoryRecorder.h"

#include <QString>

#include <cstdint>
#include <functional>
#include <memory>
#include <vector>

QT_BEGIN_NAMESPACE
class QPluginLoader;
class QSqlDriver;
class QSqlError;
QT_END_NAMESPACE

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

// The break history in an SQLite file, through Qt SQL's SQLite driver: one table of events, indexed by
// time, in write-ahead logging mode (a write appends to the log and does not wait for the disk; the
// status window's reading never blocks a write). The file's layout carries a version (SQLite's
// user_version), and opening brings an older file up to date step by step.
//
// The user-interface thread writes here, so nothing waits: a file that another process holds locked
// fails at once ("busy"), and the caller tries again later. A file that is not a database, or that
// SQLite finds damaged, is set aside under a name with the time stamp and a new one is started: the
// old one is never deleted. A file of a newer layout is left as it is and not written.
class HistoryDatabase {
public:
    static constexpr int kSchemaVersion = 2;

    // Why the last operation failed; Busy and NoSpace may pass, the others stay for the run.
    enum class Failure { None, Busy, NoSpace, CannotWrite, Newer, NoDriver, Other };

    explicit HistoryDatabase(QString path);
    ~HistoryDatabase();
    HistoryDatabase(const HistoryDatabase&) = delete;
    HistoryDatabase& operator=(const HistoryDatabase&) = delete;

    // Opens the file (creating it and its folder when missing), brings its layout up to date and deletes
    // the events from before `pruneBefore` (none when it is invalid). False when the history cannot be
    // written; failure() and problem() say why. `now` names a damaged file that is set aside.
    bool open(const QDateTime& now, const QDateTime& pruneBefore = {});
    bool isOpen() const;
    void close();
    // Closes the file and lets Qt's SQLite driver and SQLite itself go from memory; open() loads them
    // again.
    void unloadDriver();

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
    QSqlDriver* createDriver();
    bool openFile();
    bool prepare(const QDateTime& now);
    bool migrate(int from);
    bool fail(const QSqlError& error);
    bool failWith(Failure failure, QString problem);
    bool isDamage(const QSqlError& error) const;
    bool setDamagedAside(const QDateTime& now);

    QString path_;
    std::unique_ptr<QPluginLoader> driver_;
    QString connection_;
    Failure failure_ = Failure::None;
    QString problem_;
    QString setAside_;
};

} // namespace tarvo
