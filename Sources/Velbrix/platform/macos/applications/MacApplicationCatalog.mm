#include "platform/macos/applications/MacApplicationCatalog.h"

#include "platform/macos/applications/BundleFolders.h"
#include "platform/macos/applications/BundleIdentity.h"
#include "platform/macos/desktop/PictureBridge.h"
#include "platform/macos/system/Completion.h"
#include "platform/macos/system/FoundationBridge.h"

#import <AppKit/AppKit.h>

#include <QCoreApplication>
#include <QDir>
#include <QPixmap>

#include <algorithm>
#include <memory>

using namespace Qt::StringLiterals;

namespace velbrix {
namespace {

constexpr int iconPixels = 128;

// What may be made off the main thread, where there are no pixmaps.
struct FoundBundle {
    QString path;
    QString identifier;
    QString version;
    QImage icon; // of those listed
    bool isListed = true;
};
using FoundBundles = QList<FoundBundle>;
using Listed = Completion<Result<QList<InstalledApplication>>>;

// A description says what it likes; what is no text counts as absent.
QString textOf(id value)
{
    return [value isKindOfClass:[NSString class]] ? toQString(value) : QString();
}

FoundBundle lookInto(const QString &path, bool isListed)
{
    @autoreleasepool {
        NSBundle *bundle = [NSBundle bundleWithPath:toNSString(path)];
        NSDictionary<NSString *, id> *description = bundle.infoDictionary;
        FoundBundle found{path,
                          textOf(bundle.bundleIdentifier),
                          textOf(description[@"CFBundleShortVersionString"]),
                          {},
                          isListed};
        if (isListed) {
            NSImage *icon = [NSWorkspace.sharedWorkspace iconForFile:toNSString(path)];
            found.icon = toQImage(icon, QSize(iconPixels, iconPixels));
        }
        return found;
    }
}

QList<InstalledApplication> described(FoundBundles bundles)
{
    std::ranges::sort(bundles, {}, &FoundBundle::path);
    QList<InstalledApplication> applications;
    for (const FoundBundle &bundle : std::as_const(bundles)) {
        InstalledApplication application;
        application.name = bundleName(bundle.path);
        application.path = bundle.path;
        application.identifier = bundle.identifier;
        application.version = bundle.version;
        application.icon = QIcon(QPixmap::fromImage(bundle.icon));
        application.isListed = bundle.isListed;
        applications.append(application);
    }
    return applications;
}

void lookIntoAll(const QStringList &paths, const QStringList &others, const Listed &listed)
{
    dispatch_group_t group = dispatch_group_create();
    dispatch_queue_t results = dispatch_queue_create("app-scan-sync", DISPATCH_QUEUE_SERIAL);
    const auto found = std::make_shared<FoundBundles>();
    const Listed answer = listed;
    const QStringList all = paths + others;
    for (qsizetype at = 0; at < all.size(); ++at) {
        const QString path = all.at(at);
        const bool isListed = at < paths.size();
        dispatch_group_async(group, dispatch_get_global_queue(QOS_CLASS_USER_INITIATED, 0), ^{
            const FoundBundle bundle = lookInto(path, isListed);
            dispatch_sync(results, ^{
                found->append(bundle);
            });
        });
    }
    dispatch_group_notify(group, dispatch_get_main_queue(), ^{
        answer.answer(described(*found));
    });
}

QString nothingManaged(const InstalledApplication &application)
{
    return u"「%1」不是由软件包管理器安装的"_s.arg(application.name);
}

} // namespace

QCoro::Task<Result<QList<InstalledApplication>>> MacApplicationCatalog::applications()
{
    const Listed listed;
    dispatch_async(dispatch_get_global_queue(QOS_CLASS_USER_INITIATED, 0), ^{
        const QString folder = u"/Applications"_s;
        const Result<QStringList> paths = bundlesIn(folder);
        if (paths)
            lookIntoAll(*paths, bundlesBeside(folder, QDir::homePath()), listed);
        else
            listed.answer(std::unexpected(paths.error()));
    });
    return answerOf(listed);
}

OwnIdentity MacApplicationCatalog::ownIdentity() const
{
    NSBundle *bundle = NSBundle.mainBundle;
    const QString path = hasBundle() ? toQString(bundle.bundlePath) : QCoreApplication::applicationFilePath();
    const QString name = textOf(bundle.infoDictionary[@"CFBundleName"]);
    return {path, name.isEmpty() ? u"Velbrix"_s : name, toQString(bundle.bundleIdentifier)};
}

QList<LibraryFolder> MacApplicationCatalog::libraryFolders() const
{
    return libraryFoldersUnder(QDir::homePath());
}

QCoro::Task<Result<QStringList>>
MacApplicationCatalog::packagesRemovedWith(const InstalledApplication application)
{
    co_return failure(nothingManaged(application));
}

QCoro::Task<Result<void>> MacApplicationCatalog::removeManaged(const InstalledApplication application,
                                                               const QStringList, Cancellation)
{
    co_return failure(nothingManaged(application));
}

} // namespace velbrix
