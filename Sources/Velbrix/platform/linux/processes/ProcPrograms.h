#pragma once

#include "platform/RunningPrograms.h"

namespace velbrix {

// This user's processes as /proc tells of them. A script goes by its own name,
// not its interpreter's; so does what Java runs: an archive, or the folders of
// one of JetBrains' programs ("IdeaIC2024.1"), and it lies also at the script
// in bin/ beside its archives in lib/. A program in an AppImage also
// lies at the image. What runs in a sandbox answers to that as well: a Flatpak
// to its identifier, a snap to "snap.NAME".
class ProcPrograms final : public RunningPrograms {
public:
    QCoro::Task<QSet<QString>> running(QStringList names) const override;
    QCoro::Task<bool> runsFrom(QStringList paths) const override;
    // Of every network namespace of this user's processes, for each tells only its own.
    QCoro::Task<std::optional<QSet<QByteArray>>> boundSockets() const override;
};

// The sandbox that a process of these control groups runs in; mostly none.
QByteArray sandboxName(const QByteArray &groups);
// The paths in one table of local sockets; abstract names left out.
QSet<QByteArray> socketPaths(const QByteArray &table);

} // namespace velbrix
