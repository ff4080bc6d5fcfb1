#pragma once

#include "foundation/SettingsStore.h"
#include "support/MemorySettings.h"
#include "support/VirtualClock.h"

namespace velbrix::test {

// Settings on a virtual clock that begin with what is stored.
struct SettingsRig {
    explicit SettingsRig(const QJsonObject &stored = {})
        : disk(*new MemorySettings), store(kept(stored), clock)
    {
    }

    // All that is stored by now.
    QJsonObject saved()
    {
        static_cast<void>(store.flush());
        return disk.stored;
    }

    VirtualClock clock;
    MemorySettings &disk; // the store's
    SettingsStore store;

private:
    std::unique_ptr<SettingsBackend> kept(const QJsonObject &stored)
    {
        disk.stored = stored;
        return std::unique_ptr<SettingsBackend>(&disk);
    }
};

} // namespace velbrix::test
