#include "history/HistoryDatabase.h"

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
#include <optional>

// SQLite's handles, as the driver hands them out in a QVariant. The driver registers their types with Qt
// by name, keeping a description that lives in the driver's own memory; once the driver is unloaded
// Qt's register would point at nothing, and loading the driver again would read it. Registered here
// first, the names stay with the program's own descriptions, which the driver's then share.
struct sqlite3;
struct sqlite3_stmt;
Q_DECLARE_OPAQUE_POINTER(sqlite3*)
Q_DECLARE_METATYPE(sqlite3*)
Q_DECLARE_OPAQUE_POINTER(sqlite3_stmt*)
Q_DECLARE_METATYPE(sqlite3_stmt*)

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
static_assert(std::size(kSteps) == HistoryDatabase::kSchemaVersion);

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

} // namespace

QDateTime StoredEvent::at() const {
    return QDateTime::fromMSecsSinceEpoch(atMs, Qt::OffsetFromUTC, utcOffset);
}

HistoryDatabase::HistoryDatabase(QString path)
    : path_(std::move(path)) {}

HistoryDatabase::~HistoryDatabase() {
    unloadDriver();
}

bool HistoryDatabase::isOpen() const {
    return !connection_.isEmpty();
}

void HistoryDatabase::close() {
    if (connection_.isEmpty())
        return;
    if (QFileInfo(path_ + QLatin1String("-wal")).size() > kMostLogBytes)
        QSqlQuery(QSqlDatabase::database(connection_, false))
            .exec(QStringLiteral("PRAGMA wal_checkpoint(TRUNCATE)"));
    QSqlDatabase::database(connection_, false).close();
    QSqlDatabase::removeDatabase(connection_);
    connection_.clear();
}

bool HistoryDatabase::open(const QDateTime& now, const QDateTime& pruneBefore) {
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
// SQLite with it) in memory for the rest of the run.
QSqlDriver* HistoryDatabase::createDriver() {
    if (!driver_) {
        qRegisterMetaType<sqlite3*>();
        qRegisterMetaType<sqlite3_stmt*>();
        driver_ = std::make_unique<QPluginLoader>(QStringLiteral("sqldrivers/qsqlite"));
        driver_->setLoadHints({}); // a plugin loader keeps its plugin for good unless told otherwise
    }
    auto* plugin = qobject_cast<QSqlDriverPlugin*>(driver_->instance());
    return plugin ? plugin->create(QStringLiteral("QSQLITE")) : nullptr;
}

void HistoryDatabase::unloadDriver() {
    close();
    if (driver_ && driver_->isLoaded()) {
        driver_->unload();
    }
}

bool HistoryDatabase::openFile() {
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

bool HistoryDatabase::prepare(const QDateTime& now) {
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
    if (version > kSchemaVersion)
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
    return version == kSchemaVersion || migrate(version);
}

bool HistoryDatabase::migrate(int from) {
    QSqlDatabase db = QSqlDatabase::database(connection_, false);
    if (!db.transaction())
        return fail(db.lastError());
    QSqlQuery q(db);
    for (int step = from; step < kSchemaVersion; ++step) {
        for (const char* statement : kSteps[step]) {
            if (statement && !q.exec(QString::fromLatin1(statement))) {
                const QSqlError error = q.lastError();
                db.rollback();
                return fail(error);
            }
        }
    }
    if (!q.exec(QStringLiteral("PRAGMA user_version = %1").arg(kSchemaVersion)) || !db.commit()) {
        const QSqlError error = q.lastError().isValid() ? q.lastError() : db.lastError();
        db.rollback();
        return fail(error);
    }
    return true;
}

bool HistoryDatabase::append(const HistoryEvent& event) {
    if (!isOpen())
        return false;
    QSqlError error;
    {
        QSqlQuery q(QSqlDatabase::database(connection_, false));
        q.prepare(QStringLiteral("INSERT INTO events (at, utc_offset, kind, outcome, seconds, details)"
                                 " VALUES (?, ?, ?, ?, ?, ?)"));
        q.addBindValue(event.at.toMSecsSinceEpoch());
        q.addBindValue(event.at.offsetFromUtc());
        q.addBindValue(QString(historyKindName(event.kind)));
        // Empty, not NULL: the columns hold text.
        q.addBindValue(event.outcome.isNull() ? QStringLiteral("") : event.outcome);
        q.addBindValue(static_cast<qlonglong>(event.seconds));
        q.addBindValue(event.details.isNull() ? QStringLiteral("") : event.details);
        if (!q.exec())
            error = q.lastError();
    }
    if (error.isValid()) {
        // Damage found on the way: the file goes aside, and the event starts the new one.
        if (isDamage(error) && setAside_.isEmpty() && setDamagedAside(event.at) && openFile() &&
            prepare(event.at))
            return append(event);
        return fail(error);
    }
    failure_ = Failure::None;
    problem_.clear();
    return true;
}

bool HistoryDatabase::clear() {
    if (!isOpen())
        return false;
    QSqlQuery q(QSqlDatabase::database(connection_, false));
    // VACUUM rewrites the file, so that what was cleared does not linger in its free pages.
    if (!q.exec(QStringLiteral("DELETE FROM events")) || !q.exec(QStringLiteral("VACUUM")))
        return fail(q.lastError());
    return true;
}

bool HistoryDatabase::forEach(const QDateTime& from, const std::function<void(const StoredEvent&)>& visit) {
    if (!isOpen())
        return false;
    QSqlQuery q(QSqlDatabase::database(connection_, false));
    q.setForwardOnly(true);
    q.prepare(QStringLiteral("SELECT at, utc_offset, kind, outcome, seconds, details FROM events"
                             " WHERE at >= ? ORDER BY at"));
    q.addBindValue(from.isValid() ? from.toMSecsSinceEpoch() : std::numeric_limits<qint64>::min());
    if (!q.exec())
        return fail(q.lastError());
    StoredEvent e;
    while (q.next()) {
        const std::optional<HistoryKind> kind = historyKindFromName(q.value(2).toString());
        if (!kind)
            continue;
        e.atMs = q.value(0).toLongLong();
        // Events of the first layout had no offset: the local zone's, at their time.
        e.utcOffset =
            q.value(1).isNull() ? QDateTime::fromMSecsSinceEpoch(e.atMs).offsetFromUtc() : q.value(1).toInt();
        e.kind = *kind;
        e.outcome = q.value(3).toString();
        e.seconds = q.value(4).toLongLong();
        e.details = q.value(5).toString();
        visit(e);
    }
    if (q.lastError().isValid())
        return fail(q.lastError());
    return true;
}

std::vector<StoredEvent> HistoryDatabase::eventsSince(const QDateTime& from) {
    std::vector<StoredEvent> events;
    forEach(from, [&](const StoredEvent& e) { events.push_back(e); });
    return events;
}

bool HistoryDatabase::isDamage(const QSqlError& error) const {
    const int code = sqliteCode(error);
    return code == Corrupt || code == NotADb;
}

bool HistoryDatabase::setDamagedAside(const QDateTime& now) {
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

bool HistoryDatabase::fail(const QSqlError& error) {
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

bool HistoryDatabase::failWith(Failure failure, QString problem) {
    failure_ = failure;
    problem_ = std::move(problem);
    return false;
}

} // namespace tarvo
