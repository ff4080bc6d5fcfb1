#pragma once

#include "platform/CaptureSession.h"

#include <QObject>

#include <functional>
#include <memory>
#include <mutex>

namespace velbrix {

// Brings what happens on capture threads to the observer on the main thread,
// until it is closed. It may outlive the session. Created on the main thread.
class ObserverRelay {
public:
    explicit ObserverRelay(CaptureObserver observer);

    // Any thread. Only the first end of a stream counts.
    void streamStopped(Failure why);
    void warn(QString text);

    // Main thread: nothing is delivered after this.
    void close();

private:
    void post(std::function<void()> delivery);

    const CaptureObserver _observer;
    std::mutex _lock;
    std::unique_ptr<QObject> _context; // none once closed
    bool _isStopped = false;
};

} // namespace velbrix
