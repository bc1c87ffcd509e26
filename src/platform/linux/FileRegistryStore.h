#pragma once

#include "core/RegistryModel.h"
#include "core/RegistryStore.h"

#include <QString>

#include <memory>

class QLockFile;

namespace tarvo {

// The registry realised as one "REGEDIT4" text file (by default ~/.config/tarvo/registry.reg).
//
// Reads come from memory and re-read the file only when it was replaced since it was last read (each
// write replaces it, so a changed inode, size or time stamp is a reliable sign). A write takes the
// cross-process lock "<file>.lock", re-reads the file if another process changed it, applies the change
// and writes a complete new file that is flushed to disk and renamed over the old one: a reader or a
// writer killed at any moment sees either the old file or the new one, and two processes writing
// different keys keep both writes. A file that cannot be parsed is never overwritten: every access
// throws a StoreError naming the file and line until the user repairs or removes it. A missing file
// is an empty store and is not created by reading.
class FileRegistryStore : public RegistryStore {
public:
    explicit FileRegistryStore(QString path);
    ~FileRegistryStore() override;

    // $XDG_CONFIG_HOME/tarvo/registry.reg, with ~/.config when the variable is unset or not absolute.
    static QString defaultPath();

    std::optional<QString> value(const QString& section, const QString& key) override;
    QStringList sections() override;
    QStringList keys(const QString& section) override;
    void setValue(const QString& section, const QString& key, const QString& text) override;
    void deleteValue(const QString& section, const QString& key) override;
    void ensureSection(const QString& section) override;
    void deleteSection(const QString& section) override;
    void beginBatch() override;
    void endBatch() override;
    QString location() const override { return path_; }

private:
    struct FileIdentity {
        bool exists = false;
        unsigned long long device = 0, inode = 0;
        long long size = 0, mtimeNs = 0;
        bool operator==(const FileIdentity&) const = default;
    };

    FileIdentity identify() const;
    void refresh();
    void persist();
    template <typename Change>
    void modify(Change&& change);

    QString path_;
    RegistryModel model_;
    FileIdentity loaded_;
    bool everLoaded_ = false;
    int batchDepth_ = 0;
    bool dirty_ = false;
    std::unique_ptr<QLockFile> lock_;
};

} // namespace tarvo
