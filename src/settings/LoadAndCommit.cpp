#include "settings/LoadAndCommit.h"

#include "settings/Options.h"
#include "settings/SettingsPort.h"

#include <optional>

namespace tarvo {

void loadAllSettings(SettingsStore& settings, SettingsRecord& record, SettingsPort* port) {
    for (const Option& o : kOptions) {
        if (!o.inRecord())
            continue;
        if (o.text)
            o.text(record) = settings.readText(o);
        else if (o.orIntoField)
            o.number(record) |= settings.readNumber(o);
        else
            o.number(record) = settings.readNumber(o);
        if (!port)
            continue;
        switch (o.step) {
        case OptionStep::None:
            break;
        case OptionStep::Scheme:
            port->schemeRead(o.text(record));
            break;
        case OptionStep::Warning:
            port->warningRead(o.text(record));
            break;
        case OptionStep::Monitor:
            port->monitorRead(o.channel, o.number(record));
            break;
        }
    }
}

namespace {

CommitGroup groupOf(const Option& o) {
    if (QLatin1String(o.section) == QLatin1String("Micropause"))
        return CommitGroup::Micropause;
    return o.commitRank >= option("Scheme").commitRank ? CommitGroup::Scheme : CommitGroup::Exercise;
}

void commitRows(SettingsStore& settings, const SettingsRecord& record, SettingsPort* port,
                const std::optional<CommitGroup>& group) {
    StoreBatch batch(settings.store());
    SettingsRecord fields = record; // the table's accessors reach fields of a record they may change
    for (const Option* o : commitOrder()) {
        if (group && groupOf(*o) != *group)
            continue;
        if (o->step == OptionStep::Scheme && port)
            port->saveScheme();
        if (o->text)
            settings.write(*o, o->text(fields));
        else
            settings.writeNumber(*o, o->number(fields));
    }
    batch.finish();
}

} // namespace

void commitSettings(SettingsStore& settings, const SettingsRecord& record, SettingsPort* port) {
    commitRows(settings, record, port, std::nullopt);
}

void commitSettings(SettingsStore& settings, const SettingsRecord& record, SettingsPort* port,
                    CommitGroup group) {
    commitRows(settings, record, port, group);
}

} // namespace tarvo
