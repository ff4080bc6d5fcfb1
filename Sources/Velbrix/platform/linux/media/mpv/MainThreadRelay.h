#pragma once

#include <QObject>

#include <functional>
#include <memory>
#include <mutex>

namespace velbrix {

// Brings calls of other threads to the main thread, one turn of the event loop
// later, until it is closed. Created and closed on the main thread; whoever
// posts shares it and may outlive the receiver.
class MainThreadRelay {
public:
    void post(std::function<void()> call)
    {
        const std::scoped_lock lock(_lock);
        if (_context)
            QMetaObject::invokeMethod(_context.get(), std::move(call), Qt::QueuedConnection);
    }

    // Main thread: nothing is delivered after this.
    void close()
    {
        std::unique_ptr<QObject> context;
        const std::scoped_lock lock(_lock);
        context = std::move(_context);
    }

private:
    std::mutex _lock;
    std::unique_ptr<QObject> _context = std::make_unique<QObject>(); // none once closed
};

} // namespace velbrix
