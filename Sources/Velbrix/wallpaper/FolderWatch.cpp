#include "wallpaper/FolderWatch.h"

#include <QFileSystemWatcher>
#include <QThread>

#include <utility>

namespace velbrix {
namespace {

constexpr unsigned long farewell = 50; // milliseconds

} // namespace

FolderWatch::FolderWatch(QStringList folders, std::function<void()> changed) : _thread(new QThread)
{
    auto *const watcher = new QFileSystemWatcher;
    watcher->moveToThread(_thread);
    const auto tell = [relay = _relay, changed = std::move(changed)] { relay->post(changed); };
    QObject::connect(watcher, &QFileSystemWatcher::directoryChanged, watcher, tell);
    QObject::connect(_thread, &QThread::started, watcher, [watcher, folders = std::move(folders), tell] {
        watcher->addPaths(folders);
        tell(); // what has changed before is told by nobody else
    });
    QObject::connect(_thread, &QThread::finished, watcher, &QObject::deleteLater);
    QObject::connect(_thread, &QThread::finished, _thread, &QObject::deleteLater);
    _thread->start(QThread::LowPriority);
}

FolderWatch::~FolderWatch()
{
    _relay->close();
    _thread->quit();
    // One that hangs goes when its disk lets it.
    if (_thread->wait(farewell))
        delete _thread;
}

} // namespace velbrix
