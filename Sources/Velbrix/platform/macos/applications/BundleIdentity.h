#pragma once

#import <Foundation/Foundation.h>

namespace velbrix {

// The main bundle's identifier, or the product's own for a bare executable.
NSString *bundleIdentifier();
// Whether the system knows this program as an application, which the
// notification centre and the login items require.
bool hasBundle();

} // namespace velbrix
