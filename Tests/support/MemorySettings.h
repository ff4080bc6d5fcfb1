#pragma once

#include "foundation/SettingsBackend.h"

#include <optional>

namespace velbrix::test {

// Settings that rest in memory.
class MemorySettings final : public SettingsBackend {
public:
    QJsonObject stored;
    std::optional<QString> failsWith; // saves are refused with these words
    int saves = 0;                    // that succeeded
    QStringList lastChanged;

    QJsonObject load() override { return stored; }
    Result<void> save(const QJsonObject &all, const QStringList &changed) override
    {
        if (failsWith)
            return failure(*failsWith);
        ++saves;
        stored = all;
        lastChanged = changed;
        return {};
    }
};

} // namespace velbrix::test
