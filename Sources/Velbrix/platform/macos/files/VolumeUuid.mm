#include "platform/macos/files/VolumeUuid.h"

#include "platform/macos/system/FoundationBridge.h"

namespace velbrix {

QString volumeIdentity(const QString &path)
{
    @autoreleasepool {
        NSURL *const url = [NSURL fileURLWithPath:toNSString(path) isDirectory:YES];
        id uuid = nil;
        if (![url getResourceValue:&uuid forKey:NSURLVolumeUUIDStringKey error:nil])
            return {};
        return toQString(static_cast<NSString *>(uuid));
    }
}

} // namespace velbrix
