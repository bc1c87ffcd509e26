#pragma once

#include "engine/ExerciseTable.h"

#include <QString>

#include <cstdint>
#include <optional>

namespace tarvo {

class SettingsStore;

// The decisions of the scheme editor, apart from its widgets: what the list of schemes in the store
// becomes on Save As and Delete, which schemes are built in, how the exercise table follows an add,
// a removal or a move, and which names can be stored.

// The built-in schemes that Delete refuses, each between back-quotes. A name matches only as it is
// spelled here; the list of schemes never offers another spelling.
inline const QString kBuiltInSchemes = QStringLiteral("`*Medium Break`*Short Break`*Long Break`");
bool isBuiltInScheme(const QString& name);

// A scheme name becomes part of a section name of the store. A backslash would make the scheme a
// section below another one, brackets are what the store's file marks sections with, and a line
// break or other control character cannot be written there at all. Blanks are allowed.
bool isStorableSchemeName(const QString& name);

// The name typed for Save As, without the blanks around it (an empty result means "save nothing").
QString typedSchemeName(const QString& text);

// Looks the name up in the list of schemes without regard to case, with the name written behind the
// last entry as a sentinel so that the search ends there at the latest. A name found at the sentinel
// is new and stays as the last entry ("Num" grows by one); a name found earlier exists, and the
// sentinel is taken away again. Returns whether the name was already listed.
bool findOrAppendSchemeName(SettingsStore& settings, const QString& name);

// Takes the first entry equal to the name (without regard to case) out of the list of schemes: the
// entries after it move up by one, the last key goes and "Num" shrinks. The scheme's own section
// stays in the store. A name that is not listed changes nothing; returns whether it was listed.
bool removeSchemeName(SettingsStore& settings, const QString& name);

// The file name an exercise is stored with: inside the program folder (compared without regard to
// case), the name relative to it, so that the scheme keeps working when the program moves; anywhere
// else the full path.
QString storedExerciseFile(const QString& chosen, const QString& programFolder);

// Appends an exercise (included, 30 seconds) behind the last one. A full table grows, keeping what
// it holds, to twenty free places beyond the new entry.
void appendExercise(ExerciseTable& table, const QString& caption, const QString& file);
inline constexpr std::int32_t kNewExerciseSeconds = 30;

// Takes exercise k (1 … ExerciseCount) out of the table; the ones after it move down by one.
void removeExercise(ExerciseTable& table, std::int32_t k);
// Which list position to select after position k of a list went and `remaining` positions are left.
std::int32_t positionAfterRemoval(std::int32_t k, std::int32_t remaining);

// Where a move takes the exercise at position p (1 … n): button 0 moves it up, button 2 down. Nothing
// when it is already at that end (or there is no such position).
std::optional<std::int32_t> reorderTarget(int buttonIndex, std::int32_t p, std::int32_t n);

// The seconds a list entry shows ("45 seconds"): the whole number, with its sign, before the first
// blank; 0 when there is none.
std::int32_t secondsOfLengthText(const QString& lengthText);
QString lengthText(const QString& seconds);

} // namespace tarvo
