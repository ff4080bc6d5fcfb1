#pragma once

#include "foundation/Clock.h"

#include <QCoroTask>
#include <QObject>

#include <coroutine>
#include <memory>
#include <optional>
#include <tuple>
#include <utility>

// What sequences wait for, beside a Clock's Pause. Main thread only.
namespace velbrix {

// co_await nextSignal(sender, &Sender::changed, &Sender::finished);
//
// Goes on a turn of the event loop after the next emission of any of them, once
// however often they are emitted meanwhile, and never when the sender dies first.
template <typename Sender, typename... Signals> class NextSignal {
public:
    explicit NextSignal(const Sender &sender, Signals... signal) : _sender(sender), _signals(signal...) {}

    bool await_ready() const { return false; }
    void await_suspend(std::coroutine_handle<> waiter) const
    {
        constexpr auto once =
            static_cast<Qt::ConnectionType>(Qt::QueuedConnection | Qt::SingleShotConnection);
        const auto goesOn = [waiter, hasGone = std::make_shared<bool>(false)] {
            if (!std::exchange(*hasGone, true))
                waiter.resume();
        };
        std::apply([&](auto... signal) { (QObject::connect(&_sender, signal, &_sender, goesOn, once), ...); },
                   _signals);
    }
    void await_resume() const {}

private:
    const Sender &_sender;
    std::tuple<Signals...> _signals;
};

template <typename Sender, typename... Signals>
NextSignal<Sender, Signals...> nextSignal(const Sender &sender, Signals... signal)
{
    return NextSignal<Sender, Signals...>(sender, signal...);
}

namespace detail {

template <typename T> struct Race {
    std::optional<T> answer;
    std::coroutine_handle<> waiter;
    std::unique_ptr<Alarm> alarm;
    bool decided = false;

    void decide()
    {
        if (std::exchange(decided, true))
            return;
        if (waiter)
            std::exchange(waiter, nullptr).resume();
    }
};

template <typename T> struct RaceDecided {
    std::shared_ptr<Race<T>> race;
    bool await_ready() const { return race->decided; }
    void await_suspend(std::coroutine_handle<> waiter) const { race->waiter = waiter; }
    void await_resume() const {}
};

template <typename T> QCoro::Task<> runInRace(std::shared_ptr<Race<T>> race, QCoro::Task<T> task)
{
    T answer = co_await task;
    if (race->decided)
        co_return;
    race->answer = std::move(answer);
    race->decide();
}

} // namespace detail

// The task's answer, or nothing when it takes longer than the limit. The task
// then goes on and its answer is dropped.
template <typename T>
QCoro::Task<std::optional<T>> withDeadline(Clock &clock, std::chrono::milliseconds limit, QCoro::Task<T> task)
{
    const auto race = std::make_shared<detail::Race<T>>();
    detail::runInRace(race, std::move(task));
    if (!race->decided)
        race->alarm = clock.after(limit, [race] { race->decide(); });
    const detail::RaceDecided<T> decided{race};
    co_await decided;
    // Breaks the circle of race, alarm and the alarm's call.
    race->alarm.reset();
    co_return std::move(race->answer);
}

} // namespace velbrix
