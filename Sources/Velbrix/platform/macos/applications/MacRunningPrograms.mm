#include "platform/macos/applications/MacRunningPrograms.h"

#include "foundation/Paths.h"
#include "platform/macos/system/FoundationBridge.h"

#import <AppKit/AppKit.h>

#include <algorithm>

namespace velbrix {
namespace {

bool liesIn(NSURL *url, const QStringList &places)
{
    const QString path = url ? resolvedPath(toQString(url.path)) : QString();
    return !path.isEmpty() &&
           std::ranges::any_of(places, [&](const QString &place) { return isWithin(path, place); });
}

} // namespace

QCoro::Task<QSet<QString>> MacRunningPrograms::running(QStringList names) const
{
    QSet<QString> found;
    for (NSRunningApplication *application in NSWorkspace.sharedWorkspace.runningApplications) {
        const QString identifier = toQString(application.bundleIdentifier);
        if (!identifier.isEmpty() && names.contains(identifier))
            found.insert(identifier);
    }
    co_return found;
}

QCoro::Task<bool> MacRunningPrograms::runsFrom(QStringList paths) const
{
    QStringList places;
    for (const QString &path : paths) {
        if (const QString place = resolvedPath(path); place.startsWith(u'/'))
            places.append(place);
    }
    bool isFound = false;
    for (NSRunningApplication *application in NSWorkspace.sharedWorkspace.runningApplications)
        isFound =
            isFound || liesIn(application.bundleURL, places) || liesIn(application.executableURL, places);
    co_return isFound;
}

QCoro::Task<std::optional<QSet<QByteArray>>> MacRunningPrograms::boundSockets() const
{
    co_return std::optional<QSet<QByteArray>>();
}

} // namespace velbrix
