#pragma once

#include "platform/RunningPrograms.h"

namespace velbrix {

// The applications that NSWorkspace lists; helpers without a bundle of their
// own are not among them.
class MacRunningPrograms final : public RunningPrograms {
public:
    QCoro::Task<QSet<QString>> running(QStringList names) const override;
    QCoro::Task<bool> runsFrom(QStringList paths) const override;
    QCoro::Task<std::optional<QSet<QByteArray>>> boundSockets() const override;
};

} // namespace velbrix
