#pragma once

#include <QByteArray>
#include <QCoroTask>
#include <QSet>
#include <QString>
#include <QStringList>

#include <optional>

namespace velbrix {

// What the user's session is running at this moment. Main thread; what takes time is
// done off it.
class RunningPrograms {
public:
    virtual ~RunningPrograms() = default;

    // Those of the names that run. Names are what the host tells programs
    // apart by: macOS the bundle identifier, Linux the executable's file name or
    // that of the sandbox.
    virtual QCoro::Task<QSet<QString>> running(QStringList names) const = 0;
    // Whether a program runs whose executable lies at or below one of the paths.
    virtual QCoro::Task<bool> runsFrom(QStringList paths) const = 0;
    // The paths of all sockets that somebody listens on; nothing when the
    // host does not tell.
    virtual QCoro::Task<std::optional<QSet<QByteArray>>> boundSockets() const = 0;
};

} // namespace velbrix
