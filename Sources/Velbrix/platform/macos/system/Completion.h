#pragma once

#include "foundation/MainThreadRelay.h"

#include <QCoroTask>

#include <coroutine>
#include <memory>
#include <optional>
#include <utility>

namespace velbrix {

// The bridge from a completion handler to a task. Copies share one answer: one
// copy goes into the handler, which may run on any thread, at once or later;
// another goes into answerOf(), which one task awaits on the main thread. The
// first answer counts. An answer for a task that was destroyed meanwhile is
// dropped, and a handler that is never called leaves its task waiting.
template <typename T> class Completion {
    struct State {
        std::optional<T> value;
        std::coroutine_handle<> waiting;
    };

public:
    class Awaiter {
    public:
        explicit Awaiter(std::shared_ptr<State> state) : _state(std::move(state)) {}
        Awaiter(Awaiter &&) noexcept = default;
        Awaiter &operator=(Awaiter &&) = delete;
        ~Awaiter()
        {
            if (_state)
                _state->waiting = nullptr;
        }

        bool await_ready() const { return _state->value.has_value(); }
        void await_suspend(std::coroutine_handle<> task) { _state->waiting = task; }
        T await_resume() { return std::move(*_state->value); }

    private:
        std::shared_ptr<State> _state;
    };

    Completion() : _state(std::make_shared<State>()) {}

    void answer(T value) const
    {
        // Both fields belong to the main thread, so they need no lock.
        onMainThread([state = _state, value = std::move(value)] {
            if (state->value)
                return;
            state->value = value;
            if (const auto task = std::exchange(state->waiting, nullptr))
                task.resume();
        });
    }
    Awaiter answered() const { return Awaiter(_state); }

private:
    std::shared_ptr<State> _state;
};

// Keeps Objective-C objects out of the frames of tasks: the caller starts the
// operation with a handler and hands back this task.
template <typename T> QCoro::Task<T> answerOf(Completion<T> completion)
{
    co_return co_await completion.answered();
}

} // namespace velbrix
