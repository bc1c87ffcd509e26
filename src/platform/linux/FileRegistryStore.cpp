#include "platform/linux/FileRegistryStore.h"

#include "core/RegFileCodec.h"

#include <QDir>
#include <QFile>
#include <QFileInfo>
#include <QLockFile>
#include <QSaveFile>

#include <sys/stat.h>

namespace tarvo {

namespace {
// A write takes milliseconds; a lock held this long belongs to a hung process or another machine.
constexpr int kLockWaitMs = 10000;
// A process killed between creating the lock file and writing its process id into it leaves an empty
// lock that names no owner, so only its age can show that it is abandoned. It must count as stale well
// within the wait, or every writer gives up on it (the lock file's own default is 30 s).
constexpr int kStaleLockMs = kLockWaitMs / 2;

QString newlineFree(const QString& section) {
    if (section.contains(QLatin1Char('\n')) || section.contains(QLatin1Char('\r')))
        throw StoreError(QStringLiteral("A section name cannot contain a line break: \"%1\"").arg(section));
    return section;
}
} // namespace

FileRegistryStore::FileRegistryStore(QString path)
    : path_(std::move(path)) {}

FileRegistryStore::~FileRegistryStore() = default;

QString FileRegistryStore::defaultPath() {
    QString base = qEnvironmentVariable("XDG_CONFIG_HOME");
    if (base.isEmpty() || !QDir::isAbsolutePath(base))
        base = QDir::homePath() + QStringLiteral("/.config");
    return base + QStringLiteral("/tarvo/registry.reg");
}

FileRegistryStore::FileIdentity FileRegistryStore::identify() const {
    struct stat st {};
    FileIdentity id;
    if (::stat(QFile::encodeName(path_).constData(), &st) != 0)
        return id;
    id.exists = true;
    id.device = st.st_dev;
    id.inode = st.st_ino;
    id.size = st.st_size;
    id.mtimeNs = static_cast<long long>(st.st_mtim.tv_sec) * 1000000000LL + st.st_mtim.tv_nsec;
    return id;
}

void FileRegistryStore::refresh() {
    const FileIdentity id = identify();
    if (everLoaded_ && id == loaded_)
        return;
    RegistryModel fresh;
    if (id.exists) {
        QFile file(path_);
        if (!file.open(QIODevice::ReadOnly))
            throw StoreError(
                QStringLiteral("Cannot read the settings file %1: %2").arg(path_, file.errorString()));
        const QByteArray bytes = file.readAll();
        if (!isBlankRegFile(bytes)) {
            try {
                for (const RegStatement& st : parseRegFile(bytes, path_)) {
                    const std::optional<QString> section = sectionOfKeyPath(st.keyPath);
                    if (!section)
                        throw RegParseError(path_, st.line,
                                            QStringLiteral("the key is not below %1").arg(kRegistryRoot));
                    switch (st.kind) {
                    case RegStatement::Kind::CreateKey:
                        fresh.ensureSection(*section);
                        break;
                    case RegStatement::Kind::SetValue:
                        fresh.setValue(*section, st.name, st.text);
                        break;
                    case RegStatement::Kind::DeleteKey:
                    case RegStatement::Kind::DeleteValue:
                    case RegStatement::Kind::Unsupported:
                        throw RegParseError(
                            path_, st.line,
                            QStringLiteral("only keys and text values belong in the settings file"));
                    }
                }
            } catch (const RegParseError& e) {
                throw StoreError(QStringLiteral("The settings file is damaged and was left as it is.\n%1\n"
                                                "Repair or remove the file to go on.")
                                     .arg(e.message()));
            }
        }
    }
    model_ = std::move(fresh);
    loaded_ = id;
    everLoaded_ = true;
}

void FileRegistryStore::persist() {
    const QFileInfo info(path_);
    if (!QDir().mkpath(info.absolutePath()))
        throw StoreError(
            QStringLiteral("Cannot create the folder %1 for the settings file").arg(info.absolutePath()));
    QSaveFile file(path_);
    if (!file.open(QIODevice::WriteOnly))
        throw StoreError(
            QStringLiteral("Cannot write the settings file %1: %2").arg(path_, file.errorString()));
    const QByteArray bytes = serializeRegFile(model_);
    if (file.write(bytes) != bytes.size() || !file.commit())
        throw StoreError(
            QStringLiteral("Cannot write the settings file %1: %2").arg(path_, file.errorString()));
    loaded_ = identify();
}

void FileRegistryStore::beginBatch() {
    if (batchDepth_++ > 0)
        return;
    try {
        const QFileInfo info(path_);
        QDir().mkpath(info.absolutePath());
        lock_ = std::make_unique<QLockFile>(path_ + QStringLiteral(".lock"));
        lock_->setStaleLockTime(kStaleLockMs);
        if (!lock_->tryLock(kLockWaitMs))
            throw StoreError(
                QStringLiteral("The settings file %1 is locked by another program (lock file %1.lock)")
                    .arg(path_));
        refresh();
    } catch (...) {
        lock_.reset();
        batchDepth_ = 0;
        throw;
    }
}

void FileRegistryStore::endBatch() {
    if (batchDepth_ == 0 || --batchDepth_ > 0)
        return;
    // The lock is released whatever happens to the write.
    const std::unique_ptr<QLockFile> lock = std::move(lock_);
    if (!std::exchange(dirty_, false))
        return;
    try {
        persist();
    } catch (...) {
        everLoaded_ = false; // what is in memory was not written: read the file again next time
        throw;
    }
}

template <typename Change>
void FileRegistryStore::modify(Change&& change) {
    StoreBatch batch(*this);
    change(model_);
    dirty_ = true;
    batch.finish();
}

std::optional<QString> FileRegistryStore::value(const QString& section, const QString& key) {
    if (batchDepth_ == 0)
        refresh();
    return model_.value(section, key);
}

QStringList FileRegistryStore::sections() {
    if (batchDepth_ == 0)
        refresh();
    return model_.sections();
}

QStringList FileRegistryStore::keys(const QString& section) {
    if (batchDepth_ == 0)
        refresh();
    return model_.keys(section);
}

void FileRegistryStore::setValue(const QString& section, const QString& key, const QString& text) {
    newlineFree(section);
    modify([&](RegistryModel& m) { m.setValue(section, key, text); });
}

void FileRegistryStore::deleteValue(const QString& section, const QString& key) {
    modify([&](RegistryModel& m) { m.deleteValue(section, key); });
}

void FileRegistryStore::ensureSection(const QString& section) {
    newlineFree(section);
    modify([&](RegistryModel& m) { m.ensureSection(section); });
}

void FileRegistryStore::deleteSection(const QString& section) {
    modify([&](RegistryModel& m) { m.deleteSection(section); });
}

} // namespace tarvo
