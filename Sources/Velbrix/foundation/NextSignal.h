#pragma once

#include <QObject>

#include <coroutine>

namespace velbrix {

// co_await nextSignal(sender, &Sender::changed);
//
// Goes on a turn of the event loop after the next emission, once however often
// it is emitted meanwhile, and never when the sender dies first.
template <typename Sender, typename Signal> class NextSignal {
public:
    NextSignal(const Sender &sender, Signal signal) : _sender(sender), _signal(signal) {}

    bool await_ready() const { return false; }
    void await_suspend(std::coroutine_handle<> waiter) const
    {
        QObject::connect(
            &_sender, _signal, &_sender, [waiter] { waiter.resume(); },
            static_cast<Qt::ConnectionType>(Qt::QueuedConnection | Qt::SingleShotConnection));
    }
    void await_resume() const {}

private:
    const Sender &_sender;
    Signal _signal;
};

template <typename Sender, typename Signal>
NextSignal<Sender, Signal> nextSignal(const Sender &sender, Signal signal)
{
    return {sender, signal};
}

} // namespace velbrix
