#pragma once

#include "core/RegistryModel.h"
#include "core/RegistryStore.h"

#include <QString>

#include <vector>

namespace tarvo {

// The store in memory, recording every write in order so that tests can check what was written when.
class MemoryRegistryStore : public RegistryStore {
public:
    struct Write {
        QString section, key, text;
        bool operator==(const Write&) const = default;
    };

    std::optional<QString> value(const QString& section, const QString& key) override {
        reads_.push_back(section + QLatin1Char('/') + key);
        return model_.value(section, key);
    }
    QStringList sections() override { return model_.sections(); }
    QStringList keys(const QString& section) override { return model_.keys(section); }
    void setValue(const QString& section, const QString& key, const QString& text) override {
        writes_.push_back({section, key, text});
        model_.setValue(section, key, text);
    }
    void deleteValue(const QString& section, const QString& key) override {
        model_.deleteValue(section, key);
    }
    void ensureSection(const QString& section) override { model_.ensureSection(section); }
    void deleteSection(const QString& section) override { model_.deleteSection(section); }
    void beginBatch() override { ++batchDepth_; }
    void endBatch() override {
        if (--batchDepth_ == 0)
            ++batchesCompleted_;
    }
    QString location() const override { return QStringLiteral("(memory)"); }

    RegistryModel& model() { return model_; }
    const std::vector<Write>& writes() const { return writes_; }
    void clearWrites() { writes_.clear(); }
    // Every value read, as "section/key", in order.
    const QStringList& reads() const { return reads_; }
    void clearReads() { reads_.clear(); }
    int batchDepth() const { return batchDepth_; }
    int batchesCompleted() const { return batchesCompleted_; }

private:
    RegistryModel model_;
    std::vector<Write> writes_;
    QStringList reads_;
    int batchDepth_ = 0;
    int batchesCompleted_ = 0;
};

} // namespace tarvo
