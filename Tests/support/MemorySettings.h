#pragma once

#include "foundation/SettingsBackend.h"

#include <optional>

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

} // namespace velbrix::test
