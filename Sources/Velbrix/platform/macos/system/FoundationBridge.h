#pragma once

#include "foundation/Result.h"

#import <Foundation/Foundation.h>

#include <QString>

namespace velbrix {

// Objective-C++ only: the values of Foundation in ours and back.
NSString *toNSString(const QString &text);
// Empty for nil.
QString toQString(NSString *text);
// The system's own words, in the user's language; "unknown" for nil.
Failure toFailure(NSError *error);
// For methods that throw an NSException where others return an error: runs the
// body and returns what was thrown, or nil.
NSException *caughtException(void (^body)(void));
Failure toFailure(NSException *exception);

} // namespace velbrix
