#include "platform/macos/applications/BundleIdentity.h"

namespace velbrix {

NSString *bundleIdentifier()
{
    NSString *identifier = NSBundle.mainBundle.bundleIdentifier;
    return identifier ? identifier : @"com.tamsel.Velbrix";
}

bool hasBundle()
{
    return NSBundle.mainBundle.bundleIdentifier != nil;
}

} // namespace velbrix
