#include "platform/macos/applications/MacRunningPrograms.h"

#include "platform/macos/system/FoundationBridge.h"

#import <AppKit/AppKit.h>

#include <QDir>
#include <QFileInfo>

namespace velbrix {
namespace {

QString canonical(const QString &path)
{
    const QString found = QFileInfo(path).canonicalFilePath();
    return found.isEmpty() ? QDir::cleanPath(path) : found;
}

bool liesAt(NSURL *url, const QString &place)
{
    const QString path = url ? canonical(toQString(url.path)) : QString();
    return path == place || path.startsWith(place + u'/');
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
    const QString place = canonical(path);
    if (!place.startsWith(u'/'))
        return false;
    for (NSRunningApplication *application in NSWorkspace.sharedWorkspace.runningApplications) {
        if (liesAt(application.bundleURL, place) || liesAt(application.executableURL, place))
            return true;
    }
    return false;
}

} // namespace velbrix
