#include "platform/macos/system/Completion.h"
#include "support/Test.h"

#include <QCoroTask>
#include <QThread>

#include <thread>

namespace {

struct Received {
    QList<int> values;
    QThread *thread = nullptr;
};

QCoro::Task<> receive(Completion<int> completion, Received *received)
{
    const int value = co_await answerOf(completion);
    received->values.append(value);
    received->thread = QThread::currentThread();
}

// A task that dies with its owner, in the middle of what it awaits.
class MortalTask {
public:
    struct promise_type {
        MortalTask get_return_object()
        {
            return MortalTask(std::coroutine_handle<promise_type>::from_promise(*this));
        }
        std::suspend_never initial_suspend() { return {}; }
        std::suspend_always final_suspend() noexcept { return {}; }
        void return_void() {}
        void unhandled_exception() {}
    };

    explicit MortalTask(std::coroutine_handle<> handle) : _handle(handle) {}
    MortalTask(const MortalTask &) = delete;
    MortalTask &operator=(const MortalTask &) = delete;
    ~MortalTask() { _handle.destroy(); }

private:
    std::coroutine_handle<> _handle;
};

MortalTask receiveUntilDeath(Completion<int> completion, Received *received)
{
    const int value = co_await completion.answered();
    received->values.append(value);
}

void answerFromOtherThread(const Completion<int> &completion, int value)
{
    std::thread([completion, value] { completion.answer(value); }).join();
}

} // namespace

class CompletionTest : public QObject {
    Q_OBJECT

private Q_SLOTS:
    void resumesOnTheMainThreadAtItsNextTurn()
    {
        Received received;
        const Completion<int> completion;
        receive(completion, &received);
        answerFromOtherThread(completion, 7);
        QVERIFY(received.values.isEmpty());
        QCoreApplication::processEvents();
        QCOMPARE(received.values, QList<int>{7});
        QCOMPARE(received.thread, thread());
    }

    void keepsAnAnswerThatCameFirst()
    {
        Received received;
        const Completion<int> completion;
        completion.answer(3);
        QCoreApplication::processEvents();
        receive(completion, &received);
        QCOMPARE(received.values, QList<int>{3});
    }

    void countsOnlyTheFirstAnswer()
    {
        Received received;
        const Completion<int> completion;
        receive(completion, &received);
        completion.answer(1);
        answerFromOtherThread(completion, 2);
        QCoreApplication::processEvents();
        QCOMPARE(received.values, QList<int>{1});
    }

    void dropsAnAnswerForADeadTask()
    {
        Received received;
        const Completion<int> completion;
        {
            const MortalTask task = receiveUntilDeath(completion, &received);
            answerFromOtherThread(completion, 5);
        }
        QCoreApplication::processEvents();
        QVERIFY(received.values.isEmpty());
    }
};

QTEST_GUILESS_MAIN(CompletionTest)
#include "CompletionTest.moc"
