#pragma once

#include "platform/RunningPrograms.h"

namespace velbrix::test {

class FakeRunningPrograms final : public RunningPrograms {
public:
    QSet<QString> names;     // of what runs
    QStringList executables; // of what runs
    std::optional<QSet<QByteArray>> sockets = QSet<QByteArray>();

    QSet<QString> running(const QStringList &wanted) const override
    {
        return QSet<QString>(wanted.begin(), wanted.end()).intersect(names);
    }
    bool runsFrom(const QString &path) const override
    {
        for (const QString &executable : executables) {
            if (executable == path || executable.startsWith(path + u'/'))
                return true;
        }
        return false;
    }
    std::optional<QSet<QByteArray>> boundSockets() const override { return sockets; }
};

} // namespace velbrix::test
