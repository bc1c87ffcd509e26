#pragma once

#include <QString>

#include <cstdint>

namespace tarvo {

// What start-up and Apply do at their places among the reads and writes of the options: start-up loads
// the current scheme as soon as its name is known, gives the break screen its message once the
// micropause options are in, and switches each input channel on as its "Monitor" key is read; Apply
// saves the edited scheme just before it writes the scheme's name. Each step may be left as it is.
class SettingsPort {
public:
    virtual ~SettingsPort() = default;
    virtual void schemeRead(const QString& scheme) { Q_UNUSED(scheme); }
    virtual void warningRead(const QString& warning) { Q_UNUSED(warning); }
    virtual void monitorRead(int channel, std::int32_t on) {
        Q_UNUSED(channel);
        Q_UNUSED(on);
    }
    virtual void saveScheme() {}
};

} // namespace tarvo
