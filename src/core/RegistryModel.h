#pragma once

#include <QHash>
#include <QString>
#include <QStringList>

#include <optional>
#include <vector>

namespace tarvo {

// The settings as the registry holds them: named sections of named text values. Section and key
// names match without regard to case and keep the case they were first written with; sections and
// keys keep the order in which they were first written. A section name may contain backslashes:
// "Scheme a\b" is the key "b" below "Scheme a", and deleting "Scheme a" deletes it too.
class RegistryModel {
public:
    std::optional<QString> value(const QString& section, const QString& key) const;
    bool hasSection(const QString& section) const;
    QStringList sections() const;
    QStringList keys(const QString& section) const;
    int valueCount() const;

    void ensureSection(const QString& section);
    void setValue(const QString& section, const QString& key, const QString& text);
    bool deleteValue(const QString& section, const QString& key);
    // Deletes the section and every section below it; returns how many sections went.
    int deleteSection(const QString& section);

    // Exact equality: names (with their case), order and values.
    bool operator==(const RegistryModel& other) const;

    static QString fold(const QString& name) { return name.toCaseFolded(); }

private:
    struct Value {
        QString name;
        QString text;
        bool operator==(const Value&) const = default;
    };
    struct Section {
        QString name;
        std::vector<Value> values;
        QHash<QString, int> index; // folded key name -> position in values
    };

    const Section* find(const QString& section) const;
    Section& obtain(const QString& section);
    void reindexSections();

    std::vector<Section> sections_;
    QHash<QString, int> sectionIndex_; // folded section name -> position in sections_
};

} // namespace tarvo
