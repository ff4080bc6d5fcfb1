#import <AppKit/AppKit.h>

// Must be rejected: AppKit has no such method.
void fault(NSRunningApplication *application)
{
    [application activateWithoutOptions];
}
