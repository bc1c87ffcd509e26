#include "settings/SettingsStore.h"

#include "core/RuntimeError.h"
#include "core/VbConvert.h"
#include "settings/Options.h"

namespace tarvo {

QString SettingsStore::readText(const QString& section, const QString& key, const QString& defaultText) {
    return store_.value(section, key).value_or(defaultText);
}

std::int32_t SettingsStore::readNumber(const QString& section, const QString& key,
                                       std::int32_t defaultValue) {
    const QString text = readText(section, key, vb::toText(defaultValue));
    try {
        return vb::toLong(text);
    } catch (const RuntimeError& e) {
        const QString why = e.number() == vberr::Overflow ? QStringLiteral("a number too large for it")
                                                          : QStringLiteral("not a whole number");
        throw RuntimeError(e.number(), e.description(), QStringLiteral("Settings"),
                           QStringLiteral("The setting \"%1\" in section \"%2\" holds \"%3\", which is %4.\n"
                                          "Settings file: %5")
                               .arg(key, section, text, why, store_.location()));
    }
}

void SettingsStore::write(const QString& section, const QString& key, const QString& text) {
    store_.setValue(section, key, text);
}

void SettingsStore::writeNumber(const QString& section, const QString& key, std::int32_t value) {
    store_.setValue(section, key, vb::toText(value));
}

QString SettingsStore::readText(const Option& option) {
    return readText(option.sectionName(), option.keyName(), option.defaultText());
}

std::int32_t SettingsStore::readNumber(const Option& option) {
    return readNumber(option.sectionName(), option.keyName(), option.numberDefault);
}

void SettingsStore::write(const Option& option, const QString& text) {
    write(option.sectionName(), option.keyName(), text);
}

void SettingsStore::writeNumber(const Option& option, std::int32_t value) {
    if (option.kind == OptionKind::YesNo)
        value = value != 0 ? 1 : 0;
    writeNumber(option.sectionName(), option.keyName(), value);
}

} // namespace tarvo
