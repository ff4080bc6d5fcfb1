#include "platform/macos/applications/MacInstallPlace.h"

#include "platform/macos/applications/BundleFolders.h"
#include "platform/macos/applications/BundleIdentity.h"
#include "platform/macos/system/FoundationBridge.h"
#include "platform/macos/system/MacSingleInstance.h"

#include <QCoroFuture>
#include <QDir>
#include <QFileInfo>
#include <QUuid>
#include <QtConcurrent/QtConcurrentRun>

#include <sys/xattr.h>

using namespace Qt::StringLiterals;

namespace velbrix {
namespace {

NSURL *urlOf(const QString &path)
{
    return [NSURL fileURLWithPath:toNSString(path) isDirectory:YES];
}

QString applicationsFolder()
{
    const QString common = u"/Applications"_s;
    return QFileInfo(common).isWritable() ? common : QDir::homePath() + u"/Applications"_s;
}

// The user has agreed to open this program; a copy that stays in quarantine
// would run from a place of the system's choice again.
void endQuarantine(const QString &bundle)
{
    for (NSString *each in [NSFileManager.defaultManager enumeratorAtPath:toNSString(bundle)])
        ::removexattr(QFile::encodeName(bundle + u'/' + toQString(each)).constData(), "com.apple.quarantine",
                      XATTR_NOFOLLOW);
    ::removexattr(QFile::encodeName(bundle).constData(), "com.apple.quarantine", XATTR_NOFOLLOW);
}

Result<void> throwAwayCopy(const QString &bundle)
{
    NSBundle *copy = [NSBundle bundleWithPath:toNSString(bundle)];
    if (![copy.bundleIdentifier isEqualToString:bundleIdentifier()])
        return failure(u"那里已有另一个同名的应用："_s + bundle);
    NSError *error = nil;
    if (![NSFileManager.defaultManager trashItemAtURL:urlOf(bundle) resultingItemURL:nil error:&error])
        return std::unexpected(toFailure(error));
    return {};
}

// Where the bundle is now.
Result<QString> moveBundle(const QString &bundle)
{
    @autoreleasepool {
        const QString folder = applicationsFolder();
        const QString target = folder + u'/' + QFileInfo(bundle).fileName();
        // Under a name of its own until it is whole.
        const QString growing = folder + u"/.velbrix-"_s + QUuid::createUuid().toString(QUuid::WithoutBraces);
        NSFileManager *const files = NSFileManager.defaultManager;
        NSError *error = nil;
        if (!QDir().mkpath(folder))
            return failure(u"无法创建文件夹 "_s + folder);
        if (![files copyItemAtURL:urlOf(bundle) toURL:urlOf(growing) error:&error]) {
            [files removeItemAtURL:urlOf(growing) error:nil];
            return std::unexpected(toFailure(error));
        }
        endQuarantine(growing);
        const Result<void> isFree = QFileInfo::exists(target) ? throwAwayCopy(target) : Result<void>();
        if (!isFree || ![files moveItemAtURL:urlOf(growing) toURL:urlOf(target) error:&error]) {
            [files removeItemAtURL:urlOf(growing) error:nil];
            return std::unexpected(isFree ? toFailure(error) : isFree.error());
        }
        // A disk image keeps its own.
        [files trashItemAtURL:urlOf(bundle) resultingItemURL:nil error:nil];
        return target;
    }
}

} // namespace

std::optional<QString> MacInstallPlace::misplacedAt() const
{
    const QString bundle = toQString(NSBundle.mainBundle.bundlePath);
    return hasBundle() && isLeftByDownload(bundle, QDir::homePath()) ? std::optional(bundle) : std::nullopt;
}

QCoro::Task<Result<void>> MacInstallPlace::moveToApplications()
{
    const QFuture<Result<QString>> moving =
        QtConcurrent::run(&_worker, moveBundle, toQString(NSBundle.mainBundle.bundlePath));
    const Result<QString> moved = co_await moving;
    if (!moved)
        co_return std::unexpected(moved.error());
    openAfterThis(*moved);
    co_return {};
}

} // namespace velbrix
