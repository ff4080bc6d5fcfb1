#pragma once

#import <AVFoundation/AVFoundation.h>

#include <QString>

namespace velbrix {

// Objective-C++ only. Any thread.

// Reads nothing yet.
AVURLAsset *assetAt(const QString &path);

bool isLoaded(id<AVAsynchronousKeyValueLoading> object, NSString *key);
// Seconds; zero for a duration that is not loaded or no number.
double loadedDuration(AVAsset *asset);

} // namespace velbrix
