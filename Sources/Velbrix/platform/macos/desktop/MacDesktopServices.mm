#include "platform/macos/desktop/MacDesktopServices.h"

#include "platform/macos/system/FoundationBridge.h"
#include "platform/macos/system/SystemWatch.h"

#import <AppKit/AppKit.h>

#include <QFileInfo>

#include <utility>

using namespace Qt::StringLiterals;

namespace velbrix {

void MacDesktopServices::setAccessoryPresence()
{
    [NSApplication.sharedApplication setActivationPolicy:NSApplicationActivationPolicyAccessory];
}

void MacDesktopServices::resetPresence()
{
    [NSApplication.sharedApplication setActivationPolicy:NSApplicationActivationPolicyRegular];
}

void MacDesktopServices::activate()
{
    [NSApplication.sharedApplication activate];
}

void MacDesktopServices::beep()
{
    NSBeep();
}

Result<void> MacDesktopServices::revealInFolder(const QString &path)
{
    const QFileInfo file(path);
    if (file.exists()) {
        [NSWorkspace.sharedWorkspace
            activateFileViewerSelectingURLs:@[ [NSURL fileURLWithPath:toNSString(file.absoluteFilePath())] ]];
        return {};
    }
    NSURL *folder = [NSURL fileURLWithPath:toNSString(file.absolutePath()) isDirectory:YES];
    if (!QFileInfo(file.absolutePath()).isDir() || ![NSWorkspace.sharedWorkspace openURL:folder])
        return failure(u"文件和它所在的文件夹都不存在"_s);
    return {};
}

bool MacDesktopServices::hasTrayHost() const
{
    return true;
}

Observation MacDesktopServices::observeTrayHost(std::function<void()>)
{
    return Observation(); // the menu bar neither comes nor goes
}

bool MacDesktopServices::prefersReducedMotion() const
{
    return NSWorkspace.sharedWorkspace.accessibilityDisplayShouldReduceMotion;
}

bool MacDesktopServices::prefersDarkTheme() const
{
    NSAppearance *appearance = NSApplication.sharedApplication.effectiveAppearance;
    NSAppearanceName closest =
        [appearance bestMatchFromAppearancesWithNames:@[ NSAppearanceNameAqua, NSAppearanceNameDarkAqua ]];
    return closest && toQString(closest) == toQString(NSAppearanceNameDarkAqua);
}

Observation MacDesktopServices::observeTheme(std::function<void()> changed)
{
    return observationOf([[VBKeyValueWatch alloc] initWithObject:NSApplication.sharedApplication
                                                         keyPath:@"effectiveAppearance"
                                                         changed:std::move(changed)]);
}

Observation MacDesktopServices::observeUnhide(std::function<void()> unhidden)
{
    return observationOf([[VBNotificationWatch alloc]
        initWithCenter:NSNotificationCenter.defaultCenter
                  name:NSApplicationDidUnhideNotification
                posted:[unhidden = std::move(unhidden)](NSNotification *) { unhidden(); }]);
}

Observation MacDesktopServices::observeReopen(std::function<void()> reopened)
{
    return observationOf([[VBReopenWatch alloc] initWithReopened:std::move(reopened)]);
}

} // namespace velbrix
