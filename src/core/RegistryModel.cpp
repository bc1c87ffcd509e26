#include "core/RegistryModel.h"

namespace tarvo {

const RegistryModel::Section* RegistryModel::find(const QString& section) const {
    const auto it = sectionIndex_.constFind(fold(section));
    return it == sectionIndex_.cend() ? nullptr : &sections_[static_cast<size_t>(*it)];
}

RegistryModel::Section& RegistryModel::obtain(const QString& section) {
    const QString folded = fold(section);
    const auto it = sectionIndex_.constFind(folded);
    if (it != sectionIndex_.cend())
        return sections_[static_cast<size_t>(*it)];
    sectionIndex_.insert(folded, static_cast<int>(sections_.size()));
    sections_.push_back(Section{section, {}, {}});
    return sections_.back();
}

void RegistryModel::reindexSections() {
    sectionIndex_.clear();
    for (size_t i = 0; i < sections_.size(); ++i)
        sectionIndex_.insert(fold(sections_[i].name), static_cast<int>(i));
}

std::optional<QString> RegistryModel::value(const QString& section, const QString& key) const {
    const Section* s = find(section);
    if (!s)
        return std::nullopt;
    const auto it = s->index.constFind(fold(key));
    if (it == s->index.cend())
        return std::nullopt;
    return s->values[static_cast<size_t>(*it)].text;
}

bool RegistryModel::hasSection(const QString& section) const {
    return find(section) != nullptr;
}

QStringList RegistryModel::sections() const {
    QStringList names;
    names.reserve(static_cast<qsizetype>(sections_.size()));
    for (const Section& s : sections_)
        names.append(s.name);
    return names;
}

QStringList RegistryModel::keys(const QString& section) const {
    QStringList names;
    if (const Section* s = find(section)) {
        names.reserve(static_cast<qsizetype>(s->values.size()));
        for (const Value& v : s->values)
            names.append(v.name);
    }
    return names;
}

int RegistryModel::valueCount() const {
    int n = 0;
    for (const Section& s : sections_)
        n += static_cast<int>(s.values.size());
    return n;
}

void RegistryModel::ensureSection(const QString& section) {
    obtain(section);
}

void RegistryModel::setValue(const QString& section, const QString& key, const QString& text) {
    Section& s = obtain(section);
    const QString folded = fold(key);
    const auto it = s.index.constFind(folded);
    if (it != s.index.cend()) {
        s.values[static_cast<size_t>(*it)].text = text;
        return;
    }
    s.index.insert(folded, static_cast<int>(s.values.size()));
    s.values.push_back(Value{key, text});
}

bool RegistryModel::deleteValue(const QString& section, const QString& key) {
    const auto sit = sectionIndex_.constFind(fold(section));
    if (sit == sectionIndex_.cend())
        return false;
    Section& s = sections_[static_cast<size_t>(*sit)];
    const auto it = s.index.constFind(fold(key));
    if (it == s.index.cend())
        return false;
    s.values.erase(s.values.begin() + *it);
    s.index.clear();
    for (size_t i = 0; i < s.values.size(); ++i)
        s.index.insert(fold(s.values[i].name), static_cast<int>(i));
    return true;
}

int RegistryModel::deleteSection(const QString& section) {
    const QString folded = fold(section);
    const QString below = folded + QLatin1Char('\\');
    const auto gone = [&](const Section& s) {
        const QString name = fold(s.name);
        return name == folded || folded.isEmpty() || name.startsWith(below);
    };
    const auto before = sections_.size();
    std::erase_if(sections_, gone);
    reindexSections();
    return static_cast<int>(before - sections_.size());
}

bool RegistryModel::operator==(const RegistryModel& other) const {
    if (sections_.size() != other.sections_.size())
        return false;
    for (size_t i = 0; i < sections_.size(); ++i) {
        if (sections_[i].name != other.sections_[i].name || sections_[i].values != other.sections_[i].values)
            return false;
    }
    return true;
}

} // namespace tarvo
