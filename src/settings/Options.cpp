#include "settings/Options.h"

#include "core/VbConvert.h"

#include <algorithm>
#include <array>
#include <iterator>

namespace tarvo {

QString Option::defaultText() const {
    return kind == OptionKind::Text ? QString::fromLatin1(textDefault) : vb::toText(numberDefault);
}

SettingsRecord::SettingsRecord() {
    for (const Option& o : kOptions) {
        if (o.orIntoField)
            continue;
        if (o.text)
            o.text(*this) = QString::fromLatin1(o.textDefault);
        else if (o.number)
            o.number(*this) = o.numberDefault;
    }
}

std::span<const Option* const> commitOrder() {
    static const auto order = [] {
        std::array<const Option*, std::size(kOptions)> rows{};
        const auto end = std::transform(std::begin(kOptions), std::end(kOptions), rows.begin(),
                                        [](const Option& o) { return &o; });
        const auto written =
            std::remove_if(rows.begin(), end, [](const Option* o) { return o->commitRank == 0; });
        std::sort(rows.begin(), written,
                  [](const Option* a, const Option* b) { return a->commitRank < b->commitRank; });
        return std::pair(rows, static_cast<std::size_t>(written - rows.begin()));
    }();
    return std::span<const Option* const>(order.first.data(), order.second);
}

} // namespace tarvo
