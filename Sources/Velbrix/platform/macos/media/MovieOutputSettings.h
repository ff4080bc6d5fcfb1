#pragma once

#include "platform/CaptureSession.h"

#import <Foundation/Foundation.h>

namespace velbrix {

// Objective-C++ only: the dictionaries that an asset writer's inputs are made
// with. Sizes in pixels, rates in hertz and bits per second.
NSDictionary<NSString *, id> *videoTrackSettings(const MovieSettings &settings);
NSDictionary<NSString *, id> *pictureAttributes(const MovieSettings &settings);
NSDictionary<NSString *, id> *audioTrackSettings(int sampleRate, int channelCount, int bitRate);

} // namespace velbrix
