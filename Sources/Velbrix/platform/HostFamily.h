#pragma once

namespace velbrix {

// Which of the two homes this is: for tables of places and commands that each
// has of its own, never for what a port can answer.
enum class HostFamily { macos, freedesktop };

} // namespace velbrix
