#include "platform/macos/MacDesktopServices.h"

#include "platform/macos/FoundationBridge.h"
#include "platform/macos/MainThread.h"

#import <AppKit/AppKit.h>

#include <QFileInfo>

#include <utility>

using namespace Qt::StringLiterals;

static NSString *const appearanceKeyPath = @"effectiveAppearance";
static char appearanceContext;

@interface VBAppearanceObserver : NSObject
- (instancetype)initWithChanged:(std::function<void()>)changed;
@end

@implementation VBAppearanceObserver {
    std::shared_ptr<std::function<void()>> _changed;
}

- (instancetype)initWithChanged:(std::function<void()>)changed
{
    if ((self = [super init])) {
        _changed = std::make_shared<std::function<void()>>(std::move(changed));
        [NSApplication.sharedApplication addObserver:self
                                          forKeyPath:appearanceKeyPath
                                             options:0
                                             context:&appearanceContext];
    }
    return self;
}

- (void)observeValueForKeyPath:(NSString *)keyPath
                      ofObject:(id)object
                        change:(NSDictionary<NSString *, id> *)change
                       context:(void *)context
{
    if (context != &appearanceContext) {
        [super observeValueForKeyPath:keyPath ofObject:object change:change context:context];
        return;
    }
    velbrix::onMainThread([target = std::weak_ptr(_changed)] {
        if (const auto alive = target.lock())
            (*alive)();
    });
}

- (void)dealloc
{
    [NSApplication.sharedApplication removeObserver:self
                                         forKeyPath:appearanceKeyPath
                                            context:&appearanceContext];
}

@end

namespace velbrix {

struct MacDesktopServices::Private {
    VBAppearanceObserver *appearance = nil;
};

MacDesktopServices::MacDesktopServices() : _d(std::make_unique<Private>()) {}

MacDesktopServices::~MacDesktopServices() = default;

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

void MacDesktopServices::observeTrayHost(std::function<void()>)
{
    // The menu bar neither comes nor goes.
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

void MacDesktopServices::observeTheme(std::function<void()> changed)
{
    _d->appearance = [[VBAppearanceObserver alloc] initWithChanged:std::move(changed)];
}

} // namespace velbrix
