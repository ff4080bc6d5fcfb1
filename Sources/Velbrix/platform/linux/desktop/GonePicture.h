#pragma once

#include <QCoroFuture>
#include <QFileInfo>
#include <QThreadPool>
#include <QtConcurrent/QtConcurrentRun>

namespace velbrix {

// Whether a picture that was shown from this file cannot come back. No path is
// no picture.
inline QCoro::Task<bool> isGone(const QString path)
{
    if (path.isEmpty())
        co_return false;
    // Never waited for: its disk may not answer.
    static auto *const threads = new QThreadPool;
    const QFuture<bool> looked = QtConcurrent::run(threads, [path] { return !QFileInfo(path).isFile(); });
    co_return co_await looked;
}

} // namespace velbrix
