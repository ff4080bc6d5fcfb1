#pragma once

#include "platform/RunningPrograms.h"

namespace velbrix {

// This user's processes as /proc tells of them. A script goes by its own name,
// not its interpreter's, and a program in an AppImage also lies at the image.
class ProcPrograms final : public RunningPrograms {
public:
    QSet<QString> running(const QStringList &names) const override;
    bool runsFrom(const QString &path) const override;
    // Of every network namespace of this user's processes, for each tells only its own.
    std::optional<QSet<QByteArray>> boundSockets() const override;
};

// The paths in one table of local sockets; abstract names left out.
QSet<QByteArray> socketPaths(const QByteArray &table);

} // namespace velbrix
