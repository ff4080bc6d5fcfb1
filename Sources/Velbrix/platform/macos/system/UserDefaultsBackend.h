#pragma once

#include "foundation/SettingsBackend.h"

namespace velbrix {

// The application's domain in the defaults database. Keys of other makers in
// it are neither shown nor touched; values that this program cannot have
// written count as absent.
class UserDefaultsBackend final : public SettingsBackend {
public:
    QJsonObject load() override;
    Result<void> save(const QJsonObject &all, const QStringList &changed) override;
};

} // namespace velbrix
