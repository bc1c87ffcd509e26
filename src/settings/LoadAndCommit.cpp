#include "settings/LoadAndCommit.h"

#include "settings/Options.h"
#include "settings/SettingsPort.h"

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

void commitSettings(SettingsStore& settings, const SettingsRecord& record, SettingsPort* port) {
    StoreBatch batch(settings.store());
    SettingsRecord fields = record; // the table's accessors reach fields of a record they may change
    for (const Option* o : commitOrder()) {
        if (o->step == OptionStep::Scheme && port)
            port->saveScheme();
        if (o->text)
            settings.write(*o, o->text(fields));
        else
            settings.writeNumber(*o, o->number(fields));
    }
    batch.finish();
}

} // namespace tarvo
