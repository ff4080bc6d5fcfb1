#include "platform/Platform.h"

namespace velbrix {

Platform makePlatform(Clock &)
{
    return {};
}

} // namespace velbrix
