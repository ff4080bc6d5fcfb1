#include "platform/macos/files/MacTrashCan.h"

#include "platform/macos/system/FoundationBridge.h"

#include <QCoroFuture>
#include <QDir>
#include <QFileInfo>
#include <QtConcurrent/QtConcurrentRun>

#include <unistd.h>

using namespace Qt::StringLiterals;

namespace velbrix {
namespace {

// As a file, so that a link to a folder is not taken for the folder.
NSURL *itemUrl(const QString &path)
{
    return [NSURL fileURLWithPath:toNSString(path) isDirectory:NO];
}

Result<QString> throwAway(const QString &path)
{
    @autoreleasepool {
        NSURL *trashed = nil;
        NSError *error = nil;
        if (![NSFileManager.defaultManager trashItemAtURL:itemUrl(path)
                                         resultingItemURL:&trashed
                                                    error:&error])
            return std::unexpected(toFailure(error));
        return toQString(trashed.path);
    }
}

Result<void> bringBack(const QString &trashed, const QString &original)
{
    if (!FinderTrash::isTrashed(trashed, QDir::homePath(), ::getuid()))
        return failure(u"不在废纸篓里"_s);
    if (!QDir().mkpath(QFileInfo(original).path()))
        return failure(u"不能重新创建原来的文件夹"_s);
    @autoreleasepool {
        NSError *error = nil;
        // It refuses to replace what is there.
        if (![NSFileManager.defaultManager moveItemAtURL:itemUrl(trashed)
                                                   toURL:itemUrl(original)
                                                   error:&error])
            return std::unexpected(toFailure(error));
    }
    return {};
}

} // namespace

QCoro::Task<Result<QString>> MacTrashCan::moveToTrash(const QString path)
{
    const FinderTrash finder = _finder;
    const QFuture<Result<QString>> moving = QtConcurrent::run(&_worker, throwAway, path);
    const Result<QString> moved = co_await moving;
    if (moved || !FinderTrash::isAskedFor(path))
        co_return moved;
    const Result<void> byFinder = co_await finder.moveToTrash(path);
    if (!byFinder)
        co_return std::unexpected(byFinder.error());
    co_return QString();
}

QCoro::Task<Result<void>> MacTrashCan::putBack(const QString trashed, const QString original)
{
    const QFuture<Result<void>> moving = QtConcurrent::run(&_worker, bringBack, trashed, original);
    co_return co_await moving;
}

QCoro::Task<Result<RemovalReport>> MacTrashCan::empty(RemovalRules, Cancellation)
{
    const Result<void> emptied = co_await _finder.empty();
    if (!emptied)
        co_return std::unexpected(emptied.error());
    co_return RemovalReport();
}

QStringList MacTrashCan::folders() const
{
    return {QDir::homePath() + u"/.Trash"_s};
}

} // namespace velbrix
