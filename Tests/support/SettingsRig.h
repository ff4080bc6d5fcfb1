#pragma once

#include "foundation/SettingsBackend.h"
#include "foundation/SettingsStore.h"
#include "support/VirtualClock.h"

namespace velbrix::test {

// Settings that rest in memory; like a database of single values, it takes in
// nothing but the keys that are said to have changed.
class MemorySettings final : public SettingsBackend {
public:
    QJsonObject stored;
    std::optional<QString> failsWith; // saves are refused with these words
    int saves = 0;                    // that succeeded

    QJsonObject load() override { return stored; }
    Result<void> save(const QJsonObject &all, const QStringList &changed) override
    {
        if (failsWith)
            return failure(*failsWith);
        ++saves;
        for (const QString &key : changed) {
            if (all.contains(key))
                stored.insert(key, all.value(key));
            else
                stored.remove(key);
        }
        return {};
    }
};

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
