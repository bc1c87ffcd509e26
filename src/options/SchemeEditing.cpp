#include "options/SchemeEditing.h"

#include "core/Checked.h"
#include "core/RegistryStore.h"
#include "engine/SchemeStore.h"
#include "settings/SettingsStore.h"

#include <algorithm>
#include <limits>

namespace tarvo {

namespace {
const QString kNum = QStringLiteral("Num");
constexpr std::int32_t kRoomWhenFull = 20;

bool sameName(const QString& a, const QString& b) {
    return a.compare(b, Qt::CaseInsensitive) == 0;
}
} // namespace

bool isBuiltInScheme(const QString& name) {
    return kBuiltInSchemes.contains(QLatin1Char('`') + name + QLatin1Char('`'), Qt::CaseSensitive);
}

bool isStorableSchemeName(const QString& name) {
    return std::none_of(name.cbegin(), name.cend(), [](QChar c) {
        return c == QLatin1Char('\\') || c == QLatin1Char('[') || c == QLatin1Char(']') ||
               c.category() == QChar::Other_Control || c.category() == QChar::Separator_Line ||
               c.category() == QChar::Separator_Paragraph;
    });
}

QString typedSchemeName(const QString& text) {
    qsizetype from = 0;
    qsizetype to = text.size();
    while (from < to && text[from] == QLatin1Char(' '))
        ++from;
    while (to > from && text[to - 1] == QLatin1Char(' '))
        --to;
    return text.mid(from, to - from);
}

bool findOrAppendSchemeName(SettingsStore& settings, const QString& name) {
    StoreBatch batch(settings.store());
    const std::int32_t count = settings.readNumber(kSchemesSection, kNum, 0);
    const std::int32_t sentinel = checked::add(count, 1);
    settings.write(kSchemesSection, QString::number(sentinel), name);
    std::int32_t k = 1;
    while (!sameName(settings.readText(kSchemesSection, QString::number(k), QString()), name))
        k = checked::add(k, 1);
    const bool listed = k < sentinel;
    if (listed)
        settings.store().deleteValue(kSchemesSection, QString::number(sentinel));
    else
        settings.writeNumber(kSchemesSection, kNum, sentinel);
    batch.finish();
    return listed;
}

bool removeSchemeName(SettingsStore& settings, const QString& name) {
    StoreBatch batch(settings.store());
    const std::int32_t count = settings.readNumber(kSchemesSection, kNum, 0);
    std::int32_t k = 1;
    while (k <= count && !sameName(settings.readText(kSchemesSection, QString::number(k), QString()), name))
        ++k;
    if (k > count) {
        batch.finish();
        return false;
    }
    for (std::int32_t j = k; j < count; ++j)
        settings.write(kSchemesSection, QString::number(j),
                       settings.readText(kSchemesSection, QString::number(j + 1), QString()));
    settings.store().deleteValue(kSchemesSection, QString::number(count));
    settings.writeNumber(kSchemesSection, kNum, count - 1);
    batch.finish();
    return true;
}

QString storedExerciseFile(const QString& chosen, const QString& programFolder) {
    QString folder = programFolder;
    while (folder.endsWith(QLatin1Char('/')))
        folder.chop(1);
    const QString prefix = folder + QLatin1Char('/');
    if (!folder.isEmpty() && chosen.size() > prefix.size() && chosen.startsWith(prefix, Qt::CaseInsensitive))
        return chosen.mid(prefix.size());
    return chosen;
}

void appendExercise(ExerciseTable& table, const QString& caption, const QString& file) {
    table.ExerciseCount = checked::add(table.ExerciseCount, 1);
    const auto last = static_cast<size_t>(table.ExerciseCount);
    if (last >= table.Exercises.size())
        table.Exercises.resize(last + kRoomWhenFull + 1);
    table.Exercises[last] = {file, caption, 1, kNewExerciseSeconds};
}

void removeExercise(ExerciseTable& table, std::int32_t k) {
    if (k < 1 || k > table.ExerciseCount)
        return;
    // The entry behind the last one keeps its old copy; ExerciseCount alone says where the table ends.
    const auto first = table.Exercises.begin() + k;
    std::move(first + 1, table.Exercises.begin() + table.ExerciseCount + 1, first);
    table.ExerciseCount -= 1;
}

std::int32_t positionAfterRemoval(std::int32_t k, std::int32_t remaining) {
    return std::min(k, remaining);
}

std::optional<std::int32_t> reorderTarget(int buttonIndex, std::int32_t p, std::int32_t n) {
    if ((buttonIndex != 0 && buttonIndex != 2) || p < 1 || p > n || (buttonIndex == 0 && p == 1) ||
        (buttonIndex == 2 && p == n))
        return std::nullopt;
    return p + (buttonIndex - 1);
}

std::int32_t secondsOfLengthText(const QString& lengthText) {
    const QString number = lengthText.section(QLatin1Char(' '), 0, 0);
    // A stored length below zero shows with its sign, and keeps it.
    const qsizetype sign = number.startsWith(QLatin1Char('-')) ? 1 : 0;
    qsizetype digits = 0;
    while (sign + digits < number.size() && number[sign + digits].isDigit() &&
           number[sign + digits].unicode() < 128)
        ++digits;
    if (digits == 0)
        return 0;
    bool ok = false;
    const qlonglong value = QStringView(number).mid(sign, digits).toLongLong(&ok);
    const qlonglong most = sign ? -qlonglong{std::numeric_limits<std::int32_t>::min()}
                                : qlonglong{std::numeric_limits<std::int32_t>::max()};
    const qlonglong magnitude = ok ? std::min(value, most) : most;
    return static_cast<std::int32_t>(sign ? -magnitude : magnitude);
}

QString lengthText(const QString& seconds) {
    return seconds + QStringLiteral(" seconds");
}

} // namespace tarvo
