#pragma once

#include <functional>

namespace velbrix {

// Calls on the main thread at its next turn, never from inside this call. Any
// thread. Dropped when the application object is gone.
void onMainThread(std::function<void()> call);

} // namespace velbrix
