#include "platform/linux/x11/capture/ObserverRelay.h"

#include <utility>

namespace velbrix {

ObserverRelay::ObserverRelay(CaptureObserver observer)
    : _observer(std::move(observer)), _context(std::make_unique<QObject>())
{
}

void ObserverRelay::streamStopped(Failure why)
{
    {
        const std::scoped_lock lock(_lock);
        if (std::exchange(_isStopped, true))
            return;
    }
    if (_observer.streamStopped)
        post([call = _observer.streamStopped, why = std::move(why)] { call(why); });
}

void ObserverRelay::warn(QString text)
{
    if (_observer.warning)
        post([call = _observer.warning, text = std::move(text)] { call(text); });
}

void ObserverRelay::close()
{
    std::unique_ptr<QObject> context;
    const std::scoped_lock lock(_lock);
    context = std::move(_context);
}

void ObserverRelay::post(std::function<void()> delivery)
{
    const std::scoped_lock lock(_lock);
    if (_context)
        QMetaObject::invokeMethod(_context.get(), std::move(delivery), Qt::QueuedConnection);
}

} // namespace velbrix
