#pragma once

#include <atomic>
#include <functional>
#include <memory>
#include <utility>

namespace velbrix {

// Calls on the main thread at its next turn, never from inside this call. Any
// thread. Dropped when the application object is gone.
void onMainThread(std::function<void()> call);

// The same for a receiver that may go: nothing is delivered after its relay was
// closed or destroyed. Closed on the main thread; whoever may outlive the
// receiver shares it.
class MainThreadRelay {
public:
    MainThreadRelay() = default;
    ~MainThreadRelay() { close(); }
    MainThreadRelay(const MainThreadRelay &) = delete;
    MainThreadRelay &operator=(const MainThreadRelay &) = delete;

    void post(std::function<void()> call) const
    {
        onMainThread([isOpen = _isOpen, call = std::move(call)] {
            if (*isOpen)
                call();
        });
    }
    void close() { *_isOpen = false; }

private:
    const std::shared_ptr<std::atomic<bool>> _isOpen = std::make_shared<std::atomic<bool>>(true);
};

} // namespace velbrix
