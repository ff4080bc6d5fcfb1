#pragma once

#include "foundation/ProcessRunner.h"
#include "foundation/Result.h"

#import <AVFoundation/AVFoundation.h>

#include <QCoroTask>
#include <QImage>
#include <QSize>

namespace velbrix {

// Objective-C++ only. A time, and how far from it another picture will do: one
// that needs no others to be decoded costs a fraction.
struct FrameSpan {
    CMTime at;
    CMTime before;
    CMTime after;

    static FrameSpan from(CMTime at);
    static FrameSpan around(CMTime at);
};

// A picture of the span, upright and made to fit the bound, never enlarged.
// Decodes off the main thread; call and answer are on it.
QCoro::Task<Result<QImage>> searchFrame(AVAsset *asset, FrameSpan span, QSize bound,
                                        Cancellation cancellation);

} // namespace velbrix
