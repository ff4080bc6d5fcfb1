#include "platform/macos/system/BatteryRule.h"

#include <algorithm>

using namespace Qt::StringLiterals;

namespace velbrix {

bool runsOnBattery(const QList<PowerSourceFacts> &sources)
{
    return std::ranges::any_of(sources, [](const PowerSourceFacts &source) {
        return source.type == "InternalBattery"_L1 && source.state == "Battery Power"_L1;
    });
}

} // namespace velbrix
