#pragma once

#include "platform/RunningPrograms.h"

namespace velbrix {

// The applications that NSWorkspace lists; helpers without a bundle of their
// own are not among them.
class MacRunningPrograms final : public RunningPrograms {
public:
    QSet<QString> running(const QStringList &names) const override;
    bool runsFrom(const QString &path) const override;
    std::optional<QSet<QByteArray>> boundSockets() const override { return std::nullopt; }
};

} // namespace velbrix
