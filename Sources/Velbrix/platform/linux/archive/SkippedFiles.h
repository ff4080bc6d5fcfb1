#pragma once

#include <QByteArray>
#include <QString>
#include <QStringList>

#include <mutex>

namespace velbrix {

// What could not be read; any thread.
class SkippedFiles {
public:
    void add(const QByteArray &path)
    {
        const std::lock_guard lock(_mutex);
        if (++_count <= listed)
            _first.append(QString::fromUtf8(path));
    }
    QStringList first() const { return _first; }
    qint64 count() const { return _count; }

private:
    static constexpr qint64 listed = 100;

    std::mutex _mutex;
    QStringList _first;
    qint64 _count = 0;
};

} // namespace velbrix
