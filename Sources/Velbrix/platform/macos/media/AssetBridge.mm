#include "platform/macos/media/AssetBridge.h"

#include "platform/macos/media/RepairFile.h"
#include "platform/macos/system/FoundationBridge.h"

namespace velbrix {

AVURLAsset *assetAt(const QString &path)
{
    return [[AVURLAsset alloc] initWithURL:[NSURL fileURLWithPath:toNSString(path)] options:nil];
}

bool isLoaded(id<AVAsynchronousKeyValueLoading> object, NSString *key)
{
    return [object statusOfValueForKey:key error:nil] == AVKeyValueStatusLoaded;
}

double loadedDuration(AVAsset *asset)
{
    if (!isLoaded(asset, @"duration") || !CMTIME_IS_VALID(asset.duration))
        return 0;
    return finiteSeconds(CMTimeGetSeconds(asset.duration));
}

} // namespace velbrix
