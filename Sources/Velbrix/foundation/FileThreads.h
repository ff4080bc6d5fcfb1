#pragma once

#include "foundation/Clock.h"

#include <QCoroTask>

#include <coroutine>
#include <functional>
#include <memory>
#include <optional>
#include <type_traits>
#include <utility>

namespace velbrix {

// For the user, about a file of which nothing has been heard in time.
inline const QString silentDiskWords = QStringLiteral("存放它的磁盘没有回应");

// Threads for files that users name, whose disk may never answer: a share that
// is gone, a drive that hangs. Only so many work at once. One that does not
// come back in time is written off: its question is answered with nothing, and
// another thread takes its place. Main thread.
class FileThreads {
public:
    static constexpr std::chrono::seconds usualPatience{10};

    // The clock must outlive the threads. The patience counts from the moment
    // at which the work begins.
    FileThreads(Clock &clock, int atOnce, std::chrono::milliseconds patience = usualPatience);
    // What is open is answered with nothing. Waits a moment for threads that are
    // about to end.
    ~FileThreads();
    // Blocks until no thread of any is left, not even one that was written off;
    // false where one takes longer. Before that, static objects must not be
    // destroyed, as a thread may still use them.
    [[nodiscard]] static bool waitForAll(std::chrono::milliseconds limit);
    FileThreads(const FileThreads &) = delete;
    FileThreads &operator=(const FileThreads &) = delete;

    template <typename Work> QCoro::Task<std::optional<std::invoke_result_t<Work>>> run(Work work)
    {
        // Written by the thread, read once it has answered.
        const auto answer = std::make_shared<std::optional<std::invoke_result_t<Work>>>();
        const auto question =
            ask([answer, work = std::move(work)]() mutable { answer->emplace(std::move(work)()); });
        const Answered answered{question};
        co_await answered;
        if (!isAnswered(*question))
            co_return std::nullopt;
        co_return std::move(*answer);
    }

private:
    struct Question;
    struct Pool;
    struct Answered {
        std::shared_ptr<Question> question;
        bool await_ready() const { return false; }
        void await_suspend(std::coroutine_handle<> waiter) const { awaitAnswer(*question, waiter); }
        void await_resume() const {}
    };

    std::shared_ptr<Question> ask(std::function<void()> work);
    static void awaitAnswer(Question &question, std::coroutine_handle<> waiter);
    static bool isAnswered(const Question &question);

    const std::shared_ptr<Pool> _pool;
};

} // namespace velbrix
