#pragma once

#include "settings/SettingsRecord.h"

#include <QString>

#include <cstdint>
#include <limits>
#include <optional>
#include <span>
#include <string_view>

namespace tarvo {

// How an option is stored: a whole number as its decimal text ("15", "-1"), a yes/no option as the
// state of its check box ("0" or "1"), a text as typed.
enum class OptionKind { Number, YesNo, Text };

// Bounds of a whole number, both included.
struct OptionRange {
    std::int32_t min = std::numeric_limits<std::int32_t>::min();
    std::int32_t max = std::numeric_limits<std::int32_t>::max();
};

// Where start-up and Apply act on the option that has just been read or is about to be written
// (SettingsPort): the current scheme goes with its name, the break screen takes the message, and a
// "Monitor" key switches its input channel.
enum class OptionStep { None, Scheme, Warning, Monitor };

// One option of the store: where it lives, what it is, where the record keeps it and what the options
// dialog allows for it.
struct Option {
    const char* section;
    const char* key;
    OptionKind kind;
    // The record's field. None for the housekeeping keys that their readers and writers use directly.
    std::int32_t& (*number)(SettingsRecord&) = nullptr; // Number and YesNo
    QString& (*text)(SettingsRecord&) = nullptr;        // Text
    std::int32_t numberDefault = 0;
    const char* textDefault = "";
    // Or-ed into its field at load instead of replacing it, and never written by the program.
    bool orIntoField = false;
    // Its place among Apply's writes, counted from 1; 0 for an option that Apply does not write.
    int commitRank = 0;
    // The options dialog's spinner, and the range Apply silently corrects a typed value into.
    std::optional<OptionRange> spinner = std::nullopt;
    std::optional<OptionRange> clamp = std::nullopt;
    OptionStep step = OptionStep::None;
    int channel = 0; // the input channel of a "Monitor" key

    bool inRecord() const { return number != nullptr || text != nullptr; }
    // The default as the store would hold it.
    QString defaultText() const;
    QString sectionName() const { return QString::fromLatin1(section); }
    QString keyName() const { return QString::fromLatin1(key); }
};

namespace optionfield {
template <std::int32_t SettingsRecord::*Field>
std::int32_t& number(SettingsRecord& r) {
    return r.*Field;
}
template <QString SettingsRecord::*Field>
QString& text(SettingsRecord& r) {
    return r.*Field;
}
template <int Channel>
std::int32_t& monitor(SettingsRecord& r) {
    return r.Monitor[Channel];
}
} // namespace optionfield

// Every option, the record's in the order start-up reads them. Adding an option is one row here (and
// its field in the record).
inline constexpr Option kOptions[] = {
    // Housekeeping, read and written where it is used.
    {.section = "Options", .key = "tray", .kind = OptionKind::Number},
    {.section = "Options", .key = "Initialised", .kind = OptionKind::Text, .textDefault = "0"},
    {.section = "Options", .key = "AppPath", .kind = OptionKind::Text},
    {.section = "Exercise",
     .key = "ProcrastinateM",
     .kind = OptionKind::Number,
     .numberDefault = 5,
     .clamp = OptionRange{.max = 120}},

    // The record: the exercise options, with the scheme first...
    {.section = "Exercise",
     .key = "Scheme",
     .kind = OptionKind::Text,
     .text = optionfield::text<&SettingsRecord::Scheme>,
     .textDefault = "*Medium break",
     .commitRank = 18,
     .step = OptionStep::Scheme},
    {.section = "Exercise",
     .key = "EveryM",
     .kind = OptionKind::Number,
     .number = optionfield::number<&SettingsRecord::EveryM>,
     .numberDefault = 50,
     .commitRank = 14,
     .spinner = OptionRange{1, 999}},
    {.section = "Exercise",
     .key = "AudibleX",
     .kind = OptionKind::YesNo,
     .number = optionfield::number<&SettingsRecord::AudibleX>,
     .numberDefault = 1,
     .commitRank = 13},
    {.section = "Exercise",
     .key = "WarningSoundX",
     .kind = OptionKind::Text,
     .text = optionfield::text<&SettingsRecord::WarningSoundX>,
     .commitRank = 15},
    {.section = "Exercise",
     .key = "BlankX",
     .kind = OptionKind::YesNo,
     .number = optionfield::number<&SettingsRecord::BlankX>,
     .numberDefault = 1,
     .commitRank = 16},
    {.section = "Exercise",
     .key = "ViewAm",
     .kind = OptionKind::Number,
     .number = optionfield::number<&SettingsRecord::ViewAm>,
     .commitRank = 17},
    {.section = "Exercise",
     .key = "xStart",
     .kind = OptionKind::Number,
     .number = optionfield::number<&SettingsRecord::xStart>,
     .commitRank = 19},
    {.section = "Exercise",
     .key = "NumAtaTime",
     .kind = OptionKind::Number,
     .number = optionfield::number<&SettingsRecord::NumAtaTime>,
     .numberDefault = 6,
     .commitRank = 20,
     .spinner = OptionRange{1, 99}},

    // ...then the micropause options, the message last before the input channels.
    {.section = "Micropause",
     .key = "InterruptFor",
     .kind = OptionKind::Number,
     .number = optionfield::number<&SettingsRecord::InterruptFor>,
     .numberDefault = 15,
     .commitRank = 1,
     .spinner = OptionRange{3, 60},
     .clamp = OptionRange{3, 60}},
    {.section = "Micropause",
     .key = "InterruptEvery",
     .kind = OptionKind::Number,
     .number = optionfield::number<&SettingsRecord::InterruptEvery>,
     .numberDefault = 4,
     .commitRank = 2,
     .spinner = OptionRange{2, 99},
     .clamp = OptionRange{2, 999}}, // a typed interval may go past the spinner's bound
    {.section = "Micropause",
     .key = "IntelliReset",
     .kind = OptionKind::YesNo,
     .number = optionfield::number<&SettingsRecord::IntelliReset>,
     .numberDefault = 1,
     .commitRank = 10},
    {.section = "Micropause",
     .key = "Audible",
     .kind = OptionKind::YesNo,
     .number = optionfield::number<&SettingsRecord::Audible>,
     .numberDefault = 1,
     .commitRank = 3},
    {.section = "Micropause",
     .key = "WarningSound",
     .kind = OptionKind::Text,
     .text = optionfield::text<&SettingsRecord::WarningSound>,
     .commitRank = 4},
    {.section = "Micropause",
     .key = "AudiblePre",
     .kind = OptionKind::YesNo,
     .number = optionfield::number<&SettingsRecord::AudiblePre>,
     .numberDefault = 1,
     .commitRank = 5},
    {.section = "Micropause",
     .key = "WarningSoundPre",
     .kind = OptionKind::Text,
     .text = optionfield::text<&SettingsRecord::WarningSoundPre>,
     .commitRank = 6},
    {.section = "Micropause",
     .key = "DisableEsc",
     .kind = OptionKind::YesNo,
     .number = optionfield::number<&SettingsRecord::DisableEsc>,
     .commitRank = 9},
    // A second switch with the same effect, set only from outside the program (the options dialog
    // greys its Esc box while it is set).
    {.section = "Micropause",
     .key = "DisableEsc2",
     .kind = OptionKind::YesNo,
     .number = optionfield::number<&SettingsRecord::DisableEsc>,
     .orIntoField = true},
    {.section = "Micropause",
     .key = "Blank",
     .kind = OptionKind::YesNo,
     .number = optionfield::number<&SettingsRecord::Blank>,
     .numberDefault = 1,
     .commitRank = 7},
    {.section = "Micropause",
     .key = "Warning",
     .kind = OptionKind::Text,
     .text = optionfield::text<&SettingsRecord::Warning>,
     .textDefault = "Hands off Keyboard && Mouse, look away, relax.",
     .commitRank = 8,
     .step = OptionStep::Warning},
    {.section = "Micropause",
     .key = "Monitor0",
     .kind = OptionKind::YesNo,
     .number = optionfield::monitor<0>,
     .numberDefault = 1,
     .commitRank = 11,
     .step = OptionStep::Monitor,
     .channel = 0},
    {.section = "Micropause",
     .key = "Monitor1",
     .kind = OptionKind::YesNo,
     .number = optionfield::monitor<1>,
     .numberDefault = 1,
     .commitRank = 12,
     .step = OptionStep::Monitor,
     .channel = 1},

    // Presence, a section of its own. Apply of the three pages does not write it: its small dialog
    // writes it when closed with OK.
    {.section = "Presence",
     .key = "LockPause",
     .kind = OptionKind::YesNo,
     .number = optionfield::number<&SettingsRecord::LockPause>,
     .numberDefault = 1},
    {.section = "Presence",
     .key = "HoldFullScreen",
     .kind = OptionKind::YesNo,
     .number = optionfield::number<&SettingsRecord::HoldFullScreen>,
     .numberDefault = 1},
    {.section = "Presence",
     .key = "HoldDoNotDisturb",
     .kind = OptionKind::YesNo,
     .number = optionfield::number<&SettingsRecord::HoldDoNotDisturb>,
     .numberDefault = 1},
    {.section = "Presence",
     .key = "HoldInhibited",
     .kind = OptionKind::YesNo,
     .number = optionfield::number<&SettingsRecord::HoldInhibited>,
     .numberDefault = 1},
    {.section = "Presence",
     .key = "HoldLimit",
     .kind = OptionKind::Number,
     .number = optionfield::number<&SettingsRecord::HoldLimit>,
     .spinner = OptionRange{0, 999},
     .clamp = OptionRange{0, 999}},
};

// The option with this key (keys are unique across sections). An unknown key does not compile.
consteval const Option& option(std::string_view key) {
    for (const Option& o : kOptions)
        if (std::string_view(o.key) == key)
            return o;
    throw "no option has this key";
}

// The options that Apply writes, in the order it writes them.
std::span<const Option* const> commitOrder();

} // namespace tarvo
