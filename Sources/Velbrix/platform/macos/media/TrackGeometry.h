#pragma once

#import <AVFoundation/AVFoundation.h>

#include <QSizeF>
#include <QTransform>

namespace velbrix {

// Objective-C++ only. A track's geometry in our values; both must be loaded.

inline QSizeF naturalSize(AVAssetTrack *track)
{
    const CGSize size = track.naturalSize;
    return {size.width, size.height};
}

inline QTransform turn(AVAssetTrack *track)
{
    const CGAffineTransform matrix = track.preferredTransform;
    return {matrix.a, matrix.b, matrix.c, matrix.d, matrix.tx, matrix.ty};
}

} // namespace velbrix
