#include "history/HistoryDatabase.h"

#include <QFile>
#include <QMetaType>

#include <dlfcn.h>

// SQLite's handles, as Qt's SQLite driver hands them out in a QVariant. The driver registers their
// types with Qt by name, and Qt's register keeps the first description it is given: the driver's own
// would lie in the driver's memory and be read again after the driver is unloaded. Registered here
// first, the names stay with the program's own descriptions, which the driver's then share.
struct sqlite3;
struct sqlite3_stmt;
Q_DECLARE_OPAQUE_POINTER(sqlite3*)
Q_DECLARE_METATYPE(sqlite3*)
Q_DECLARE_OPAQUE_POINTER(sqlite3_stmt*)
Q_DECLARE_METATYPE(sqlite3_stmt*)

namespace tarvo {

namespace {

// A text of the program's own: one the module made may be a literal in the module's memory, which
// would be gone with it; a text on the heap is shared as it is.
QString own(const QString& text) {
    return text.isNull() || text.data_ptr().isMutable() ? text : QString(text.constData(), text.size());
}

} // namespace

QDateTime StoredEvent::at() const {
    return QDateTime::fromMSecsSinceEpoch(atMs, Qt::OffsetFromUTC, utcOffset);
}

HistoryDatabase::HistoryDatabase(QString path, const QString& programFolder)
    : path_(std::move(path))
    , moduleFile_(programFolder + QLatin1Char('/') + QLatin1String(kHistoryStoreModule)) {}

HistoryDatabase::~HistoryDatabase() {
    unloadModule();
}

bool HistoryDatabase::load() {
    if (store_)
        return true;
    qRegisterMetaType<sqlite3*>();
    qRegisterMetaType<sqlite3_stmt*>();
    // Loaded with the system's own count of holders: Qt's QLibrary made beside another one that has the
    // library loaded counts as loaded itself, and its unloading would take the library from the other.
    module_ = dlopen(QFile::encodeName(moduleFile_).constData(), RTLD_NOW | RTLD_LOCAL);
    const auto create =
        module_ ? reinterpret_cast<CreateHistoryStore>(dlsym(module_, kCreateHistoryStore)) : nullptr;
    if (!create) {
        failure_ = Failure::NoDriver;
        problem_ = QStringLiteral("its module cannot be loaded (%1)").arg(QString::fromLocal8Bit(dlerror()));
        unloadModule();
        return false;
    }
    store_.reset(create(path_));
    return true;
}

void HistoryDatabase::unloadModule() {
    store_.reset(); // the store's code and its driver go with the module: the store goes first
    if (module_)
        dlclose(module_);
    module_ = nullptr;
}

bool HistoryDatabase::took(bool done) {
    failure_ = store_->failure();
    problem_ = own(store_->problem());
    setAside_ = own(store_->setAsidePath());
    return done;
}

bool HistoryDatabase::open(const QDateTime& now, const QDateTime& pruneBefore) {
    return load() && took(store_->open(now, pruneBefore));
}

void HistoryDatabase::close() {
    if (store_)
        store_->close();
}

bool HistoryDatabase::append(const HistoryEvent& event) {
    if (!store_)
        return false;
    const StoredRow row{event.at.toMSecsSinceEpoch(),
                        event.at.offsetFromUtc(),
                        QString(historyKindName(event.kind)),
                        event.outcome,
                        event.seconds,
                        event.details};
    return took(store_->append(row));
}

bool HistoryDatabase::clear() {
    return store_ && took(store_->clear());
}

bool HistoryDatabase::forEach(const QDateTime& from, const std::function<void(const StoredEvent&)>& visit) {
    if (!store_)
        return false;
    StoredEvent e;
    return took(store_->forEach(from, [&](const StoredRow& row) {
        const std::optional<HistoryKind> kind = historyKindFromName(row.kind);
        if (!kind)
            return; // a kind of a later version's
        e.atMs = row.atMs;
        e.utcOffset = row.utcOffset;
        e.kind = *kind;
        e.outcome = own(row.outcome);
        e.seconds = row.seconds;
        e.details = own(row.details);
        visit(e);
    }));
}

std::vector<StoredEvent> HistoryDatabase::eventsSince(const QDateTime& from) {
    std::vector<StoredEvent> events;
    forEach(from, [&](const StoredEvent& e) { events.push_back(e); });
    return events;
}

} // namespace tarvo
