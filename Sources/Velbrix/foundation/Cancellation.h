#pragma once

#include "foundation/Observation.h"

#include <atomic>
#include <functional>
#include <memory>
#include <utility>

namespace velbrix {

// Lets somebody end work early. Copies share one state. May be copied and read
// on any thread; cancelled and listened to on the main thread.
class Cancellation {
public:
    // Calls the listeners, oldest first; only the first time.
    void cancel()
    {
        const auto state = _state; // a listener may let go of this copy
        if (!state->isCancelled.exchange(true))
            state->listeners.notify();
    }
    bool isCancelled() const { return _state->isCancelled; }

    // Called at once when it is too late already.
    Observation onCancel(std::function<void()> listener)
    {
        if (!isCancelled())
            return _state->listeners.add(std::move(listener));
        listener();
        return Observation();
    }
    // The other is cancelled with this one, as long as the observation lives.
    Observation passTo(const Cancellation &other)
    {
        return onCancel([other = Cancellation(other)]() mutable { other.cancel(); });
    }

private:
    struct State {
        std::atomic<bool> isCancelled = false;
        ObserverList<void()> listeners;
    };
    std::shared_ptr<State> _state = std::make_shared<State>();
};

} // namespace velbrix
