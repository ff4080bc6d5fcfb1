#pragma once

#include "foundation/MainThreadRelay.h"
#include "platform/CaptureSession.h"

#include <functional>
#include <memory>
#include <type_traits>
#include <utility>

namespace velbrix {

// How the threads of a capture reach the session's observer: on the main
// thread, and only while the session holds it.
class CaptureEvents {
public:
    explicit CaptureEvents(std::weak_ptr<CaptureObserver> observer) : _observer(std::move(observer)) {}

    template <typename... Values>
    void post(std::function<void(Values...)> CaptureObserver::*event,
              std::type_identity_t<Values>... values) const
    {
        onMainThread([observer = _observer, event, ... values = std::move(values)] {
            if (const auto alive = observer.lock(); alive && (*alive).*event)
                ((*alive).*event)(values...);
        });
    }

private:
    std::weak_ptr<CaptureObserver> _observer;
};

} // namespace velbrix
