#pragma once

#include "engine/ExerciseTable.h"

#include <QStringList>

namespace tarvo {

class SettingsStore;

// Where schemes live in the store: section "Schemes" lists their names ("Num", then "1" … "Num"), and
// each scheme is a section "Scheme" + name with "Num" and, per exercise i, the keys i (file),
// i + "d" (caption), i + "y" (included) and i + "s" (seconds).
inline const QString kSchemesSection = QStringLiteral("Schemes");
inline QString schemeSection(const QString& name) {
    return QStringLiteral("Scheme") + name;
}

// Fills the table from the scheme's section. A stored "title.avi" entry is dropped and the next stored
// entry takes its place (reading one index further for each dropped one), so the count shrinks by
// the number dropped. A missing section reads as an empty scheme. Non-numeric "Num", "y" or "s"
// values are run-time error 13 naming the section and key.
void LoadScheme(SettingsStore& settings, ExerciseTable& table, const QString& name);

// Writes exercises 1 … count and then "Num" as one durable update. Keys of a longer earlier version of
// the scheme stay in the store; "Num" alone bounds what is read back.
void SaveScheme(SettingsStore& settings, const QString& name, const std::vector<ExerciseRecord>& exercises,
                std::int32_t count);

// The scheme names in their stored order.
QStringList readSchemeList(SettingsStore& settings);
// Stores the list: "Num", then the names as "1" … "Num". Entries above a shorter list stay; "Num"
// bounds what is read back.
void writeSchemeList(SettingsStore& settings, const QStringList& names);

} // namespace tarvo
