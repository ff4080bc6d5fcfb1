#pragma once

#include "platform/linux/WindowSystem.h"

namespace velbrix {

// An X server, or the one that a Wayland session keeps for programs of X.
extern const WindowSystem x11WindowSystem;

} // namespace velbrix
