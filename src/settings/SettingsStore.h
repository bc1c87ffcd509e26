#pragma once

#include "core/RegistryStore.h"

#include <QString>

#include <cstdint>

namespace tarvo {

struct Option;

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

    // The same for an option of the table, with its own default. A yes/no option is written as the
    // state of its check box: "1" for any value but 0.
    QString readText(const Option& option);
    std::int32_t readNumber(const Option& option);
    void write(const Option& option, const QString& text);
    void writeNumber(const Option& option, std::int32_t value);

    RegistryStore& store() { return store_; }

private:
    RegistryStore& store_;
};

} // namespace tarvo
