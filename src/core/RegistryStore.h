#pragma once

#include "core/ProgramInfo.h"

#include <QString>
#include <QStringList>

#include <optional>
#include <stdexcept>
#include <utility>

namespace tarvo {

// The per-user settings root. Sections are the keys below it ("Options", "Micropause", "Scheme*Medium
// Break"); the empty section name stands for the root key itself.
inline const QString kRegistryRoot =
    QStringLiteral("HKEY_CURRENT_USER\\Software\\VB and VBA Program Settings\\") +
    QLatin1String(kProgramTitle);

// The store could not be read or written: its file is damaged, locked or not writable. The message
// names the file (and the line, for a damaged file).
class StoreError : public std::runtime_error {
public:
    explicit StoreError(const QString& message)
        : std::runtime_error(message.toStdString())
        , message_(message) {}
    const QString& message() const { return message_; }

private:
    QString message_;
};

// The per-user store of text values in named sections. Names match without regard to case and keep
// the case they were first written with. Reads see what other processes wrote; every write is durable
// when the call returns, unless it is part of a batch, which becomes durable as a whole at its end.
class RegistryStore {
public:
    virtual ~RegistryStore() = default;

    virtual std::optional<QString> value(const QString& section, const QString& key) = 0;
    virtual QStringList sections() = 0;
    // Key names of a section in stored order; empty when the section does not exist.
    virtual QStringList keys(const QString& section) = 0;

    virtual void setValue(const QString& section, const QString& key, const QString& text) = 0;
    virtual void deleteValue(const QString& section, const QString& key) = 0;
    // Creates an empty section (a key with no values) unless it exists.
    virtual void ensureSection(const QString& section) = 0;
    // Deletes the section and every section below it ("Scheme a\b" below "Scheme a").
    virtual void deleteSection(const QString& section) = 0;

    // Batches nest; the outermost end makes every change since the outermost begin durable at once.
    virtual void beginBatch() = 0;
    virtual void endBatch() = 0;

    // Where the store lives, for messages.
    virtual QString location() const = 0;
};

// Groups writes into one durable update. Call finish() to end the batch and see write errors; if the
// scope is left by an exception instead, the writes made so far are still kept (each of them was
// already accepted), and a failure to keep them is not allowed to mask the original error.
class StoreBatch {
public:
    explicit StoreBatch(RegistryStore& store)
        : store_(&store) {
        store_->beginBatch();
    }
    StoreBatch(const StoreBatch&) = delete;
    StoreBatch& operator=(const StoreBatch&) = delete;
    ~StoreBatch() {
        if (!store_)
            return;
        try {
            store_->endBatch();
        } catch (...) { // NOLINT(bugprone-empty-catch): already unwinding from the error that matters
        }
    }
    void finish() {
        RegistryStore* s = std::exchange(store_, nullptr);
        s->endBatch();
    }

private:
    RegistryStore* store_;
};

} // namespace tarvo
