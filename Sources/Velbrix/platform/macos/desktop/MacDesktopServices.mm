#include "platform/macos/desktop/MacDesktopServices.h"

#include "platform/macos/system/FoundationBridge.h"
#include "platform/macos/system/SystemWatch.h"

#import <AppKit/AppKit.h>

#include <QCoreApplication>
#include <QEvent>
#include <QFileInfo>

#include <utility>

using namespace Qt::StringLiterals;
using namespace std::chrono_literals;

// Beneath Qt's delegate, which leaves to it what it implements.
@interface VBApplicationDelegate : NSObject <NSApplicationDelegate>
- (void)allowEnd;
@end

@implementation VBApplicationDelegate {
    BOOL _mayEnd;
    BOOL _systemWaits;
}

- (NSApplicationTerminateReply)applicationShouldTerminate:(NSApplication *)sender
{
    (void)sender;
    QEvent quit(QEvent::Quit);
    QCoreApplication::sendEvent(QCoreApplication::instance(), &quit);
    _systemWaits = !_mayEnd;
    return _mayEnd ? NSTerminateNow : NSTerminateLater;
}

- (void)allowEnd
{
    _mayEnd = YES;
    if (_systemWaits)
        [NSApplication.sharedApplication replyToApplicationShouldTerminate:YES];
}

@end

static VBApplicationDelegate *applicationDelegate;

namespace velbrix {
namespace {

// What a program in front that does not yield has for refusing.
constexpr int64_t cooperationLimit = std::chrono::nanoseconds(200ms).count();

} // namespace

void installApplicationDelegate()
{
    applicationDelegate = [[VBApplicationDelegate alloc] init];
    NSApplication.sharedApplication.delegate = applicationDelegate;
}

void MacDesktopServices::setAccessoryPresence()
{
    [NSApplication.sharedApplication setActivationPolicy:NSApplicationActivationPolicyAccessory];
}

void MacDesktopServices::resetPresence()
{
    [NSApplication.sharedApplication setActivationPolicy:NSApplicationActivationPolicyRegular];
}

void MacDesktopServices::allowSystemToEnd()
{
    [applicationDelegate allowEnd];
}

void MacDesktopServices::activate()
{
    [NSApplication.sharedApplication activate];
    // The user has asked for the window, with a key or in a terminal.
    dispatch_after(dispatch_time(DISPATCH_TIME_NOW, cooperationLimit), dispatch_get_main_queue(), ^{
        if (!NSApplication.sharedApplication.isActive)
            [NSApplication.sharedApplication activateIgnoringOtherApps:YES];
    });
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

Result<void> MacDesktopServices::openFile(const QString &path)
{
    const QFileInfo file(path);
    if (!file.isFile())
        return failure(u"文件不存在："_s + path);
    if (![NSWorkspace.sharedWorkspace openURL:[NSURL fileURLWithPath:toNSString(file.absoluteFilePath())]])
        return failure(u"没有可以打开它的程序，文件位于 "_s + path);
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
