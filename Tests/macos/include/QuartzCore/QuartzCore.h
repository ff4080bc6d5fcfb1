#pragma once

#include <Foundation/Foundation.h>

#pragma clang assume_nonnull begin

typedef NS_OPTIONS(unsigned int, CAAutoresizingMask) {
    kCALayerWidthSizable = 1U << 1,
    kCALayerHeightSizable = 1U << 4,
};

@interface CALayer : NSObject
@property CGRect frame;
@property CAAutoresizingMask autoresizingMask;
@property BOOL needsDisplayOnBoundsChange;
- (void)addSublayer:(CALayer *)layer;
- (void)removeFromSuperlayer;
@end

#pragma clang assume_nonnull end
