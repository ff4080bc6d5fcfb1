#pragma once

#include <functional>

namespace velbrix {

// Runs work(0) and work(1) at the same time, or only work(0) when there can be
// no second thread; returns when both have. Work shares what there is to do.
void onTwoThreads(const std::function<void(std::size_t)> &work);

} // namespace velbrix
