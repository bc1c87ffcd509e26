// The history's file in SQLite through Qt SQL's SQLite driver: the module that the program loads only
// around its use (history-store.so), so that the idle program carries neither Qt SQL, the driver nor
// SQLite. Nothing of it may outlive its unloading: it registers no types with Qt, and what it hands the
// program the program copies.
#include "history/HistoryStore.h"

#include <QDir>
#include <QFile>
#include <QFileInfo>
#include <QPluginLoader>
#include <QSqlDatabase>
#include <QSqlDriver>
#include <QSqlDriverPlugin>
#include <QSqlError>
#include <QSqlQuery>
#include <QVariant>

#include <dlfcn.h>
#include <limits>
#include <memory>

namespace tarvo {

namespace {

// SQLite's primary result codes, as Qt's driver reports them in nativeErrorCode().
enum SqliteCode {
    Perm = 3,
    Busy = 5,
    Locked = 6,
    ReadOnly = 8,
    IoErr = 10,
    Corrupt = 11,
    Full = 13,
    CantOpen = 14,
    NotADb = 26
};

int sqliteCode(const QSqlError& error) {
    bool ok = false;
    const int code = error.nativeErrorCode().toInt(&ok);
    return ok ? (code & 0xff) : -1; // the extended codes carry the primary one in their low byte
}

// The layouts, each step from the one before: the first kept time in UTC only; the second adds the
// offset from UTC where the event happened (so that an export after a move or a clock change still
// tells the local time the user saw), and the index on time that every reading uses.
const char* const kSteps[][2] = {
    {"CREATE TABLE events (id INTEGER PRIMARY KEY, at INTEGER NOT NULL, kind TEXT NOT NULL,"
     " outcome TEXT NOT NULL DEFAULT '', seconds INTEGER NOT NULL DEFAULT 0,"
     " details TEXT NOT NULL DEFAULT '')",
     nullptr},
    {"ALTER TABLE events ADD COLUMN utc_offset INTEGER", "CREATE INDEX events_at ON events (at)"},
};
static_assert(std::size(kSteps) == kHistorySchemaVersion);

int nextConnection = 0;

// Each opening reads the whole log again (nobody keeps its index between events), and SQLite's own
// checkpoints would copy all of it again each time: the log is copied into the file, and emptied, once
// it has grown this large, a few dozen events.
constexpr qint64 kMostLogBytes = 256 * 1024;

// The connection is closed after every event; SQLite's last close would copy the log into the file
// then and flush both to the disk, which takes milliseconds the user-interface thread must not wait.
// Without it the log stays, and is copied (in its own flushes) by the checkpoint SQLite makes once it
// has grown to wal_autocheckpoint pages. Qt's driver offers no such option: the setting goes to
// SQLite directly, through the library the driver has loaded (SQLITE_DBCONFIG_NO_CKPT_ON_CLOSE). The
// library is looked up each time and let go at once: a reference kept here would hold it in memory
// after the driver is unloaded.
void skipCheckpointOnClose(const QSqlDatabase& db) {
    using DbConfig = int (*)(void*, int, ...);
    constexpr int kNoCheckpointOnClose = 1006;
    void* library = dlopen("libsqlite3.so.0", RTLD_LAZY | RTLD_NOLOAD);
    if (!library)
        return;
    const auto dbConfig = reinterpret_cast<DbConfig>(dlsym(library, "sqlite3_db_config"));
    const QVariant handle = db.driver()->handle();
    if (dbConfig && handle.isValid() && qstrcmp(handle.typeName(), "sqlite3*") == 0)
        dbConfig(*static_cast<void* const*>(handle.constData()), kNoCheckpointOnClose, 1, nullptr);
    dlclose(library);
}

// One table of events, indexed by time, in write-ahead logging mode (a write appends to the log and
// does not wait for the disk; the status window's reading never blocks a write). The file's layout
// carries a version (SQLite's user_version), and opening brings an older file up to date step by step.
//
// The user-interface thread writes here, so nothing waits: a file that another process holds locked
// fails at once ("busy"), and the caller tries again later. A file that is not a database, or that
// SQLite finds damaged, is set aside under a name with the time stamp and a new one is started: the
// old one is never deleted. A file of a newer layout is left as it is and not written.
class SqliteHistoryStore final : public HistoryStore {
public:
    explicit SqliteHistoryStore(QString path)
        : path_(std::move(path)) {}
    ~SqliteHistoryStore() override;

    bool open(const QDateTime& now, const QDateTime& pruneBefore) override;
    bool isOpen() const override { return !connection_.isEmpty(); }
    void close() override;
    bool append(const StoredRow& row) override;
    bool clear() override;
    bool forEach(const QDateTime& from, const std::function<void(const StoredRow&)>& visit) override;

    Failure failure() const override { return failure_; }
    QString problem() const override { return problem_; }
    QString setAsidePath() const override { return setAside_; }

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

// The connection goes first, then the driver: its plugin is unloaded with it, SQLite too.
SqliteHistoryStore::~SqliteHistoryStore() {
    close();
    if (driver_ && driver_->isLoaded())
        driver_->unload();
}

void SqliteHistoryStore::close() {
    if (connection_.isEmpty())
        return;
    if (QFileInfo(path_ + QLatin1String("-wal")).size() > kMostLogBytes)
        QSqlQuery(QSqlDatabase::database(connection_, false))
            .exec(QStringLiteral("PRAGMA wal_checkpoint(TRUNCATE)"));
    QSqlDatabase::database(connection_, false).close();
    QSqlDatabase::removeDatabase(connection_);
    connection_.clear();
}

bool SqliteHistoryStore::open(const QDateTime& now, const QDateTime& pruneBefore) {
    close();
    failure_ = Failure::None;
    problem_.clear();
    if (!QDir().mkpath(QFileInfo(path_).absolutePath()))
        return failWith(Failure::CannotWrite,
                        QStringLiteral("cannot create the folder %1").arg(QFileInfo(path_).absolutePath()));
    if (!openFile() || !prepare(now)) {
        close(); // the next try starts afresh
        return false;
    }
    if (pruneBefore.isValid()) {
        QSqlQuery prune(QSqlDatabase::database(connection_, false));
        prune.prepare(QStringLiteral("DELETE FROM events WHERE at < ?"));
        prune.addBindValue(pruneBefore.toMSecsSinceEpoch());
        if (!prune.exec())
            return fail(prune.lastError());
    }
    return true;
}

// The driver is loaded here, not through QSqlDatabase's own list of drivers, which would keep it (and
// SQLite with it) in memory for the rest of the run. Its name is made at run time: Qt's register of
// loaded libraries must not keep text of this module's.
QSqlDriver* SqliteHistoryStore::createDriver() {
    if (!driver_) {
        driver_ = std::make_unique<QPluginLoader>(QString::fromLatin1("sqldrivers/qsqlite"));
        driver_->setLoadHints({}); // a plugin loader keeps its plugin for good unless told otherwise
    }
    auto* plugin = qobject_cast<QSqlDriverPlugin*>(driver_->instance());
    return plugin ? plugin->create(QStringLiteral("QSQLITE")) : nullptr;
}

bool SqliteHistoryStore::openFile() {
    QSqlDriver* driver = createDriver();
    if (!driver)
        return failWith(Failure::NoDriver,
                        QStringLiteral("Qt's SQLite driver is not installed (libqt6sql6-sqlite)"));
    connection_ = QStringLiteral("tarvo-history-%1").arg(++nextConnection);
    QSqlDatabase db = QSqlDatabase::addDatabase(driver, connection_); // the connection owns the driver
    db.setDatabaseName(path_);
    // Never wait for another process's lock: the caller runs on the user-interface thread.
    db.setConnectOptions(QStringLiteral("QSQLITE_BUSY_TIMEOUT=0"));
    if (!db.open())
        return fail(db.lastError());
    skipCheckpointOnClose(db);
    return true;
}

bool SqliteHistoryStore::prepare(const QDateTime& now) {
    QSqlError error;
    int version = 0;
    {
        QSqlQuery q(QSqlDatabase::database(connection_, false));
        if (q.exec(QStringLiteral("PRAGMA user_version")) && q.next())
            version = q.value(0).toInt();
        else
            error = q.lastError();
    }
    if (error.isValid()) {
        // Set aside once; a new file found damaged too would be a fault of our own, not of the file.
        if (!isDamage(error) || !setAside_.isEmpty())
            return fail(error);
        return setDamagedAside(now) && openFile() && prepare(now);
    }
    QSqlQuery q(QSqlDatabase::database(connection_, false));
    if (version > kHistorySchemaVersion)
        return failWith(Failure::Newer,
                        QStringLiteral("%1 was written by a newer version of Tarvo Micropause")
                            .arg(QDir::toNativeSeparators(path_)));
    // Write-ahead logging is a property of the file, set once; synchronous NORMAL is safe with it (a
    // power cut may lose the last events, never the file) and spares the disk a flush per event. The
    // log is copied into the file by close(), not by SQLite's own checkpoints.
    if (!q.exec(QStringLiteral("PRAGMA journal_mode=WAL")) ||
        !q.exec(QStringLiteral("PRAGMA synchronous=NORMAL")) ||
        !q.exec(QStringLiteral("PRAGMA wal_autocheckpoint=0")))
        return fail(q.lastError());
    return version == kHistorySchemaVersion || migrate(version);
}

bool SqliteHistoryStore::migrate(int from) {
    QSqlDatabase db = QSqlDatabase::database(connection_, false);
    if (!db.transaction())
        return fail(db.lastError());
    QSqlQuery q(db);
    for (int step = from; step < kHistorySchemaVersion; ++step) {
        for (const char* statement : kSteps[step]) {
            if (statement && !q.exec(QString::fromLatin1(statement))) {
                const QSqlError error = q.lastError();
                db.rollback();
                return fail(error);
            }
        }
    }
    if (!q.exec(QStringLiteral("PRAGMA user_version = %1").arg(kHistorySchemaVersion)) || !db.commit()) {
        const QSqlError error = q.lastError().isValid() ? q.lastError() : db.lastError();
        db.rollback();
        return fail(error);
    }
    return true;
}

bool SqliteHistoryStore::append(const StoredRow& row) {
    if (!isOpen())
        return false;
    QSqlError error;
    {
        QSqlQuery q(QSqlDatabase::database(connection_, false));
        q.prepare(QStringLiteral("INSERT INTO events (at, utc_offset, kind, outcome, seconds, details)"
                                 " VALUES (?, ?, ?, ?, ?, ?)"));
        q.addBindValue(static_cast<qlonglong>(row.atMs));
        q.addBindValue(row.utcOffset);
        q.addBindValue(row.kind);
        // Empty, not NULL: the columns hold text.
        q.addBindValue(row.outcome.isNull() ? QStringLiteral("") : row.outcome);
        q.addBindValue(static_cast<qlonglong>(row.seconds));
        q.addBindValue(row.details.isNull() ? QStringLiteral("") : row.details);
        if (!q.exec())
            error = q.lastError();
    }
    if (error.isValid()) {
        // Damage found on the way: the file goes aside, and the event starts the new one.
        const QDateTime at = QDateTime::fromMSecsSinceEpoch(row.atMs, Qt::OffsetFromUTC, row.utcOffset);
        if (isDamage(error) && setAside_.isEmpty() && setDamagedAside(at) && openFile() && prepare(at))
            return append(row);
        return fail(error);
    }
    failure_ = Failure::None;
    problem_.clear();
    return true;
}

bool SqliteHistoryStore::clear() {
    if (!isOpen())
        return false;
    QSqlQuery q(QSqlDatabase::database(connection_, false));
    // VACUUM rewrites the file, so that what was cleared does not linger in its free pages.
    if (!q.exec(QStringLiteral("DELETE FROM events")) || !q.exec(QStringLiteral("VACUUM")))
        return fail(q.lastError());
    return true;
}

bool SqliteHistoryStore::forEach(const QDateTime& from, const std::function<void(const StoredRow&)>& visit) {
    if (!isOpen())
        return false;
    QSqlQuery q(QSqlDatabase::database(connection_, false));
    q.setForwardOnly(true);
    q.prepare(QStringLiteral("SELECT at, utc_offset, kind, outcome, seconds, details FROM events"
                             " WHERE at >= ? ORDER BY at"));
    q.addBindValue(from.isValid() ? from.toMSecsSinceEpoch() : std::numeric_limits<qint64>::min());
    if (!q.exec())
        return fail(q.lastError());
    StoredRow e;
    while (q.next()) {
        e.atMs = q.value(0).toLongLong();
        // Events of the first layout had no offset: the local zone's, at their time.
        e.utcOffset =
            q.value(1).isNull() ? QDateTime::fromMSecsSinceEpoch(e.atMs).offsetFromUtc() : q.value(1).toInt();
        e.kind = q.value(2).toString();
        e.outcome = q.value(3).toString();
        e.seconds = q.value(4).toLongLong();
        e.details = q.value(5).toString();
        visit(e);
    }
    if (q.lastError().isValid())
        return fail(q.lastError());
    return true;
}

bool SqliteHistoryStore::isDamage(const QSqlError& error) const {
    const int code = sqliteCode(error);
    return code == Corrupt || code == NotADb;
}

bool SqliteHistoryStore::setDamagedAside(const QDateTime& now) {
    close();
    const QString suffix = QStringLiteral(".damaged-") + now.toString(QStringLiteral("yyyyMMdd-HHmmss"));
    // The log and its index belong to the file and go with it.
    for (const char* part : {"", "-wal", "-shm"}) {
        const QString from = path_ + QLatin1String(part);
        if (QFile::exists(from) && !QFile::rename(from, path_ + suffix + QLatin1String(part)))
            return failWith(
                Failure::CannotWrite,
                QStringLiteral("%1 is damaged and cannot be set aside").arg(QDir::toNativeSeparators(path_)));
    }
    setAside_ = path_ + suffix;
    return true;
}

bool SqliteHistoryStore::fail(const QSqlError& error) {
    const QString file = QDir::toNativeSeparators(path_);
    switch (sqliteCode(error)) {
    case Busy:
    case Locked:
        return failWith(Failure::Busy, QStringLiteral("%1 is in use by another program").arg(file));
    case Full:
        return failWith(Failure::NoSpace, QStringLiteral("the disk is full"));
    case Perm:
    case ReadOnly:
    case CantOpen:
    case IoErr:
        return failWith(Failure::CannotWrite, QStringLiteral("%1 cannot be written").arg(file));
    case Corrupt:
    case NotADb:
        return failWith(Failure::Other, QStringLiteral("%1 is damaged").arg(file));
    default:
        return failWith(Failure::Other, error.text());
    }
}

bool SqliteHistoryStore::failWith(Failure failure, QString problem) {
    failure_ = failure;
    problem_ = std::move(problem);
    return false;
}

} // namespace

} // namespace tarvo

extern "C" Q_DECL_EXPORT tarvo::HistoryStore* tarvo_create_history_store(const QString& path) {
    return new tarvo::SqliteHistoryStore(path);
}
