#pragma once

#include <QString>

namespace velbrix {

// What the kernel knows about the machine's power, read from a folder like
// /sys/class/power_supply.
struct PowerSupplies {
    bool hasBattery = false;
    bool isOnBattery = false;

    static PowerSupplies read(const QString &folder);
};

} // namespace velbrix
