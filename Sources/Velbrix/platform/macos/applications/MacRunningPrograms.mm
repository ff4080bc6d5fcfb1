#include "platform/macos/applications/MacRunningPrograms.h"

#include "foundation/Paths.h"
#include "platform/macos/system/FoundationBridge.h"

#import <AppKit/AppKit.h>

namespace velbrix {
namespace {

bool liesAt(NSURL *url, const QString &place)
{
    return url && isWithin(resolvedPath(toQString(url.path)), place);
}

} // namespace

QSet<QString> MacRunningPrograms::running(const QStringList &names) const
{
    QSet<QString> found;
    for (NSRunningApplication *application in NSWorkspace.sharedWorkspace.runningApplications) {
        const QString identifier = toQString(application.bundleIdentifier);
        if (!identifier.isEmpty() && names.contains(identifier))
            found.insert(identifier);
    }
    return found;
}

bool MacRunningPrograms::runsFrom(const QString &path) const
{
    const QString place = resolvedPath(path);
    if (!place.startsWith(u'/'))
        return false;
    for (NSRunningApplication *application in NSWorkspace.sharedWorkspace.runningApplications) {
        if (liesAt(application.bundleURL, place) || liesAt(application.executableURL, place))
            return true;
    }
    return false;
}

} // namespace velbrix
