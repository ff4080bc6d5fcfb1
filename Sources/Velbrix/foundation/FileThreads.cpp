#include "foundation/FileThreads.h"

#include "foundation/MainThreadRelay.h"

#include <condition_variable>
#include <list>
#include <mutex>
#include <thread>

namespace velbrix {
namespace {

constexpr std::chrono::milliseconds farewell{500};

// Threads that have not ended, those written off among them.
struct Census {
    std::mutex lock;
    std::condition_variable hasFallen;
    int threads = 0;
};

// Never destroyed, as the threads may outlive everything.
Census &census()
{
    static auto &census = *new Census;
    return census;
}

} // namespace

struct FileThreads::Question {
    std::function<void()> work;
    std::coroutine_handle<> waiter;
    std::unique_ptr<Alarm> alarm; // while a thread works on it
    bool isDecided = false;
    bool isAnswered = false;
    bool isCounted = true; // behind the pool's lock

    void decide(bool answered)
    {
        isDecided = true;
        isAnswered = answered;
        alarm.reset();
        if (waiter)
            std::exchange(waiter, nullptr).resume();
    }
};

struct FileThreads::Pool : std::enable_shared_from_this<Pool> {
    Pool(Clock &time, int most, std::chrono::milliseconds limit) : clock(time), atOnce(most), patience(limit)
    {
    }

    void startNext()
    {
        while (!waiting.empty() && static_cast<int>(working.size()) < atOnce && !hasEnded) {
            const auto question = waiting.front();
            waiting.pop_front();
            start(question);
        }
    }

    void start(const std::shared_ptr<Question> &question)
    {
        working.push_back(question);
        question->alarm = clock.after(patience, [self = weak_from_this(), weak = std::weak_ptr(question)] {
            const auto pool = self.lock();
            const auto late = weak.lock();
            if (pool && late)
                pool->writeOff(late);
        });
        {
            const std::scoped_lock guard(lock);
            ++threads;
        }
        {
            const std::scoped_lock guard(census().lock);
            ++census().threads;
        }
        std::thread([self = shared_from_this(), question]() mutable {
            answer(std::move(self), std::move(question));
            const std::scoped_lock guard(census().lock);
            --census().threads;
            census().hasFallen.notify_all();
        }).detach();
    }

    // By value: nothing of it is left with the thread.
    static void answer(std::shared_ptr<Pool> self, std::shared_ptr<Question> question)
    {
        std::exchange(question->work, nullptr)();
        onMainThread([self, question] { self->finish(question, true); });
        self->discount(*question);
    }

    // Any thread.
    void discount(Question &question)
    {
        const std::scoped_lock guard(lock);
        if (!std::exchange(question.isCounted, false))
            return;
        --threads;
        threadEnded.notify_all();
    }

    void writeOff(const std::shared_ptr<Question> &question)
    {
        discount(*question);
        finish(question, false);
    }

    // Whichever comes first counts, the answer or the end of the patience.
    void finish(const std::shared_ptr<Question> &question, bool isAnswered)
    {
        if (question->isDecided)
            return;
        working.remove(question);
        startNext();
        question->decide(isAnswered);
    }

    Clock &clock;
    const int atOnce;
    const std::chrono::milliseconds patience;
    std::list<std::shared_ptr<Question>> waiting;
    std::list<std::shared_ptr<Question>> working;
    bool hasEnded = false;

    std::mutex lock;
    std::condition_variable threadEnded;
    int threads = 0; // without those written off
};

FileThreads::FileThreads(Clock &clock, int atOnce, std::chrono::milliseconds patience)
    : _pool(std::make_shared<Pool>(clock, atOnce, patience))
{
}

FileThreads::~FileThreads()
{
    _pool->hasEnded = true;
    for (const auto &question : _pool->working)
        question->alarm.reset();
    // Nobody is called from inside a destructor.
    onMainThread([pool = _pool] {
        auto open = std::exchange(pool->working, {});
        open.splice(open.end(), pool->waiting);
        for (const auto &question : open) {
            if (!question->isDecided)
                question->decide(false);
        }
    });
    std::unique_lock guard(_pool->lock);
    _pool->threadEnded.wait_for(guard, farewell, [this] { return _pool->threads == 0; });
}

bool FileThreads::waitForAll(std::chrono::milliseconds limit)
{
    std::unique_lock guard(census().lock);
    return census().hasFallen.wait_for(guard, limit, [] { return census().threads == 0; });
}

std::shared_ptr<FileThreads::Question> FileThreads::ask(std::function<void()> work)
{
    auto question = std::make_shared<Question>();
    question->work = std::move(work);
    _pool->waiting.push_back(question);
    _pool->startNext();
    return question;
}

void FileThreads::awaitAnswer(Question &question, std::coroutine_handle<> waiter)
{
    question.waiter = waiter;
}

bool FileThreads::isAnswered(const Question &question)
{
    return question.isAnswered;
}

} // namespace velbrix
