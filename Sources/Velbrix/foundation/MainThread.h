#pragma once

#include <functional>
#include <memory>
#include <utility>

namespace velbrix {

// Calls on the main thread at its next turn, never from inside this call. Any
// thread. Dropped when the application object is gone.
void onMainThread(std::function<void()> call);

// The same for a receiver of the main thread that may go: nothing is delivered
// after its relay was closed. Copies share one state and may be posted to on
// any thread; closed on the main thread.
class MainThreadRelay {
public:
    void post(std::function<void()> call) const
    {
        onMainThread([isOpen = _isOpen, call = std::move(call)] {
            if (*isOpen)
                call();
        });
    }
    void close() { *_isOpen = false; }

private:
    const std::shared_ptr<bool> _isOpen = std::make_shared<bool>(true); // main thread only
};

} // namespace velbrix
