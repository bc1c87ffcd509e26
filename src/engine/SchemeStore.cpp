#include "engine/SchemeStore.h"

#include "core/Checked.h"
#include "core/RegistryStore.h"
#include "core/RuntimeError.h"
#include "settings/SettingsStore.h"

namespace tarvo {

namespace {
// A table this large cannot come from a real scheme; refusing it beats exhausting memory.
constexpr std::int32_t kMaxTableSize = 1000000;
const QString kNum = QStringLiteral("Num");
} // namespace

void LoadScheme(SettingsStore& settings, ExerciseTable& table, const QString& name) {
    const QString section = schemeSection(name);
    const std::int32_t stored = settings.readNumber(section, kNum, 0);
    const std::int32_t last = checked::add(stored, 100);
    if (last < 0)
        throw RuntimeError(
            vberr::SubscriptOutOfRange, {}, QStringLiteral("LoadScheme"),
            QStringLiteral("Scheme \"%1\" claims %2 exercises.").arg(name, QString::number(stored)));
    if (last >= kMaxTableSize)
        throw RuntimeError(
            vberr::OutOfMemory, {}, QStringLiteral("LoadScheme"),
            QStringLiteral("Scheme \"%1\" claims %2 exercises.").arg(name, QString::number(stored)));
    table.Exercises.assign(static_cast<size_t>(last) + 1, ExerciseRecord{});

    std::int32_t kept = 0;
    std::int32_t read = 0;
    while (kept < stored) {
        kept = checked::add(kept, 1);
        read = checked::add(read, 1);
        const QString k = QString::number(read);
        ExerciseRecord& e = table.Exercises[static_cast<size_t>(kept)];
        e.File = settings.readText(section, k, QString());
        e.Caption = settings.readText(section, k + QLatin1Char('d'), QStringLiteral("error!"));
        e.Include = settings.readNumber(section, k + QLatin1Char('y'), 0);
        e.Seconds = settings.readNumber(section, k + QLatin1Char('s'), 0);
        if (e.File.toLower() == QLatin1String("title.avi"))
            kept = checked::sub(kept, 1);
    }
    // Each dropped title entry made the loop read one stored index further; the last of those reads
    // found nothing and left a default entry just past the count.
    table.ExerciseCount = checked::sub(checked::add(stored, kept), read);
    table.Exercises[0] = titleExercise();
}

void SaveScheme(SettingsStore& settings, const QString& name, const std::vector<ExerciseRecord>& exercises,
                std::int32_t count) {
    const QString section = schemeSection(name);
    StoreBatch batch(settings.store());
    for (std::int32_t i = 1; i <= count; ++i) {
        if (static_cast<size_t>(i) >= exercises.size())
            throw RuntimeError(vberr::SubscriptOutOfRange, {}, QStringLiteral("SaveScheme"));
        const ExerciseRecord& e = exercises[static_cast<size_t>(i)];
        const QString k = QString::number(i);
        settings.writeNumber(section, k + QLatin1Char('y'), e.Include);
        settings.writeNumber(section, k + QLatin1Char('s'), e.Seconds);
        settings.write(section, k, e.File);
        settings.write(section, k + QLatin1Char('d'), e.Caption);
    }
    settings.writeNumber(section, kNum, count);
    batch.finish();
}

QStringList readSchemeList(SettingsStore& settings) {
    const std::int32_t count = settings.readNumber(kSchemesSection, kNum, 0);
    QStringList names;
    for (std::int32_t i = 1; i <= count; ++i)
        names.append(settings.readText(kSchemesSection, QString::number(i), QString()));
    return names;
}

void writeSchemeList(SettingsStore& settings, const QStringList& names) {
    settings.writeNumber(kSchemesSection, kNum, static_cast<std::int32_t>(names.size()));
    for (qsizetype i = 0; i < names.size(); ++i)
        settings.write(kSchemesSection, QString::number(i + 1), names[i]);
}

} // namespace tarvo
