#pragma once

#include "core/RegistryStore.h"

#include <QString>

#include <cstdint>

namespace tarvo {

// Reading and writing single settings. A missing key (or section) yields the default; a numeric
// setting is converted after reading, and stored text that is not a whole number is run-time error 13
// (or 6 when out of range) whose message names the section, the key and the stored text.
class SettingsStore {
public:
    explicit SettingsStore(RegistryStore& store)
        : store_(store) {}

    QString readText(const QString& section, const QString& key, const QString& defaultText);
    std::int32_t readNumber(const QString& section, const QString& key, std::int32_t defaultValue);

    void write(const QString& section, const QString& key, const QString& text);
    void writeNumber(const QString& section, const QString& key, std::int32_t value);

    RegistryStore& store() { return store_; }

private:
    RegistryStore& store_;
};

} // namespace tarvo
