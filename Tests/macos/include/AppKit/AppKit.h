#pragma once

#include <Foundation/Foundation.h>
#include <QuartzCore/QuartzCore.h>

#pragma clang assume_nonnull begin

typedef int pid_t;

typedef NS_OPTIONS(unsigned long long, NSEventMask) { NSEventMaskKeyDown = 1ULL << 10 };
typedef NS_OPTIONS(NSUInteger, NSEventModifierFlags) {
    NSEventModifierFlagShift = 1 << 17,
    NSEventModifierFlagControl = 1 << 18,
    NSEventModifierFlagOption = 1 << 19,
    NSEventModifierFlagCommand = 1 << 20,
};

@interface NSEvent : NSObject
@property(readonly) NSEventModifierFlags modifierFlags;
@property(readonly) unsigned short keyCode;
@property(getter=isARepeat, readonly) BOOL ARepeat;
+ (nullable id)addGlobalMonitorForEventsMatchingMask:(NSEventMask)mask
                                             handler:(void (^)(NSEvent *event))handler;
+ (nullable id)addLocalMonitorForEventsMatchingMask:(NSEventMask)mask
                                            handler:(NSEvent *_Nullable (^)(NSEvent *event))handler;
+ (void)removeMonitor:(id)monitor;
@end

typedef NSString *NSAppearanceName;
extern "C" NSAppearanceName const NSAppearanceNameAqua;
extern "C" NSAppearanceName const NSAppearanceNameDarkAqua;

@interface NSAppearance : NSObject
- (nullable NSAppearanceName)bestMatchFromAppearancesWithNames:(NSArray<NSAppearanceName> *)names;
@end

typedef NS_ENUM(NSInteger, NSApplicationActivationPolicy) {
    NSApplicationActivationPolicyRegular,
    NSApplicationActivationPolicyAccessory,
};
typedef NS_OPTIONS(NSUInteger, NSApplicationActivationOptions) {
    NSApplicationActivateAllWindows = 1 << 0,
};

@class NSImage;
@class NSRunningApplication;
@class NSWindow;

extern "C" {
extern NSNotificationName NSApplicationDidChangeScreenParametersNotification;
extern NSNotificationName NSApplicationDidFinishLaunchingNotification;
extern NSNotificationName NSApplicationDidUnhideNotification;
}

typedef NS_ENUM(NSUInteger, NSApplicationTerminateReply) {
    NSTerminateCancel = 0,
    NSTerminateNow = 1,
    NSTerminateLater = 2,
};

@class NSApplication;
@protocol NSApplicationDelegate <NSObject>
@optional
- (NSApplicationTerminateReply)applicationShouldTerminate:(NSApplication *)sender;
@end

@interface NSApplication : NSObject
@property(class, readonly, strong) __kindof NSApplication *sharedApplication;
@property(nullable, weak) id<NSApplicationDelegate> delegate;
@property(readonly, getter=isActive) BOOL active;
- (void)activateIgnoringOtherApps:(BOOL)ignoreOtherApps;
- (void)replyToApplicationShouldTerminate:(BOOL)shouldTerminate;
@property(readonly, strong) NSAppearance *effectiveAppearance;
@property(readonly, copy) NSArray<NSWindow *> *windows;
- (BOOL)setActivationPolicy:(NSApplicationActivationPolicy)policy;
- (void)activate API_AVAILABLE(macos(14.0));
- (void)yieldActivationToApplication:(NSRunningApplication *)application API_AVAILABLE(macos(14.0));
@end

@interface NSRunningApplication : NSObject
@property(readonly) pid_t processIdentifier;
@property(readonly, getter=isTerminated) BOOL terminated;
@property(nullable, readonly, copy) NSString *bundleIdentifier;
@property(nullable, readonly, copy) NSURL *bundleURL;
@property(nullable, readonly, copy) NSURL *executableURL;
@property(class, readonly, strong) NSRunningApplication *currentApplication;
+ (NSArray<NSRunningApplication *> *)runningApplicationsWithBundleIdentifier:(NSString *)bundleIdentifier;
- (BOOL)activateWithOptions:(NSApplicationActivationOptions)options;
@end

@interface NSColorSpace : NSObject
@property(class, readonly, strong) NSColorSpace *sRGBColorSpace;
@end

@interface NSColor : NSObject <NSCopying>
@property(class, readonly, strong) NSColor *clearColor;
@property(readonly) CGFloat redComponent;
@property(readonly) CGFloat greenComponent;
@property(readonly) CGFloat blueComponent;
@property(readonly) CGFloat alphaComponent;
+ (NSColor *)colorWithSRGBRed:(CGFloat)red
                        green:(CGFloat)green
                         blue:(CGFloat)blue
                        alpha:(CGFloat)alpha API_AVAILABLE(macos(10.7));
- (nullable NSColor *)colorUsingColorSpace:(NSColorSpace *)space;
@end

typedef NSString *NSDeviceDescriptionKey;

@interface NSScreen : NSObject
@property(class, readonly, copy) NSArray<NSScreen *> *screens;
@property(readonly) NSRect frame;
@property(readonly) NSRect visibleFrame;
@property(readonly, copy) NSDictionary<NSDeviceDescriptionKey, id> *deviceDescription;
@property(readonly, copy) NSString *localizedName API_AVAILABLE(macos(10.15));
@end

@interface NSView : NSObject
@property BOOL wantsLayer;
@property(nullable, strong) CALayer *layer;
@property(readonly) NSRect bounds;
@end

typedef NS_OPTIONS(NSUInteger, NSWindowStyleMask) { NSWindowStyleMaskBorderless = 0 };
typedef NS_ENUM(NSUInteger, NSBackingStoreType) { NSBackingStoreBuffered = 2 };
typedef NSInteger NSWindowLevel;
typedef NS_OPTIONS(NSUInteger, NSWindowCollectionBehavior) {
    NSWindowCollectionBehaviorCanJoinAllSpaces = 1 << 0,
    NSWindowCollectionBehaviorStationary = 1 << 4,
    NSWindowCollectionBehaviorFullScreenAuxiliary = 1 << 8,
};
typedef NS_OPTIONS(NSUInteger, NSWindowOcclusionState) { NSWindowOcclusionStateVisible = 1UL << 1 };

extern "C" NSNotificationName NSWindowDidChangeOcclusionStateNotification API_AVAILABLE(macos(10.9));

@interface NSWindow : NSObject
@property(nullable, strong) __kindof NSView *contentView;
@property(nullable, readonly, strong) NSScreen *screen;
@property(readonly) NSInteger windowNumber;
@property(readonly, getter=isVisible) BOOL visible;
@property(readonly) NSWindowOcclusionState occlusionState API_AVAILABLE(macos(10.9));
@property NSWindowLevel level;
@property NSWindowCollectionBehavior collectionBehavior;
@property(getter=isOpaque) BOOL opaque;
@property(null_resettable, copy) NSColor *backgroundColor;
@property BOOL ignoresMouseEvents;
@property BOOL hasShadow;
@property BOOL canHide;
@property BOOL hidesOnDeactivate;
@property(getter=isReleasedWhenClosed) BOOL releasedWhenClosed;
- (instancetype)initWithContentRect:(NSRect)contentRect
                          styleMask:(NSWindowStyleMask)style
                            backing:(NSBackingStoreType)backing
                              defer:(BOOL)defer;
- (void)setFrame:(NSRect)frame display:(BOOL)display;
- (void)orderFrontRegardless;
- (void)orderOut:(nullable id)sender;
- (void)close;
@end

typedef NSString *NSWorkspaceDesktopImageOptionKey;

extern "C" {
extern NSWorkspaceDesktopImageOptionKey const NSWorkspaceDesktopImageScalingKey;
extern NSWorkspaceDesktopImageOptionKey const NSWorkspaceDesktopImageAllowClippingKey;
extern NSWorkspaceDesktopImageOptionKey const NSWorkspaceDesktopImageFillColorKey;
extern NSNotificationName NSWorkspaceActiveSpaceDidChangeNotification;
extern NSNotificationName NSWorkspaceDidWakeNotification;
extern NSNotificationName NSWorkspaceScreensDidSleepNotification;
extern NSNotificationName NSWorkspaceScreensDidWakeNotification;
extern NSNotificationName NSWorkspaceSessionDidBecomeActiveNotification;
extern NSNotificationName NSWorkspaceSessionDidResignActiveNotification;
}

@interface NSWorkspace : NSObject
@property(readonly, strong) NSNotificationCenter *notificationCenter;
@property(class, readonly, strong) NSWorkspace *sharedWorkspace;
@property(readonly) BOOL accessibilityDisplayShouldReduceMotion;
@property(readonly, copy) NSArray<NSRunningApplication *> *runningApplications API_AVAILABLE(macos(10.6));
- (BOOL)openURL:(NSURL *)url;
- (NSImage *)iconForFile:(NSString *)fullPath;
- (void)activateFileViewerSelectingURLs:(NSArray<NSURL *> *)fileURLs;
- (BOOL)setDesktopImageURL:(NSURL *)url
                 forScreen:(NSScreen *)screen
                   options:(NSDictionary<NSWorkspaceDesktopImageOptionKey, id> *)options
                     error:(NSError *_Nullable *_Nullable)error;
- (nullable NSURL *)desktopImageURLForScreen:(NSScreen *)screen;
- (nullable NSDictionary<NSWorkspaceDesktopImageOptionKey, id> *)desktopImageOptionsForScreen:
    (NSScreen *)screen;
@end

extern "C" void NSBeep(void);

@interface NSGraphicsContext : NSObject
@property(class, strong, nullable) NSGraphicsContext *currentContext;
+ (NSGraphicsContext *)graphicsContextWithCGContext:(CGContextRef)context flipped:(BOOL)flipped;
+ (void)saveGraphicsState;
+ (void)restoreGraphicsState;
@end

typedef NS_ENUM(NSUInteger, NSCompositingOperation) { NSCompositingOperationSourceOver = 2 };

typedef CGFloat NSFontWeight;
extern "C" const NSFontWeight NSFontWeightRegular;

@interface NSImageSymbolConfiguration : NSObject <NSCopying>
+ (instancetype)configurationWithPointSize:(CGFloat)pointSize weight:(NSFontWeight)weight;
@end

@interface NSImage : NSObject <NSCopying>
@property NSSize size;
+ (nullable instancetype)imageWithSystemSymbolName:(NSString *)name
                          accessibilityDescription:(nullable NSString *)description;
- (nullable NSImage *)imageWithSymbolConfiguration:(NSImageSymbolConfiguration *)configuration;
- (void)drawInRect:(NSRect)rect
          fromRect:(NSRect)fromRect
         operation:(NSCompositingOperation)operation
          fraction:(CGFloat)delta;
@end

#pragma clang assume_nonnull end
