#pragma once

#include "foundation/Clock.h"
#include "platform/MovieFiles.h"
#include <utility>

#include <QStringList>

namespace velbrix::test {

// Movies that are what the test says.
class FakeMovieFiles final : public MovieFiles {
public:
    explicit FakeMovieFiles(Clock &clock) : _clock(clock) {}

    std::chrono::milliseconds delay{0};
    Result<MovieFacts> facts =
        MovieFacts{.isPlayable = true, .duration = 5.0, .hasVideo = true, .audioTracks = 1};
    Result<void> repairAnswer;
    QStringList calls; // "inspect PATH", "repair PATH"

    QCoro::Task<Result<MovieFacts>> inspect(const QString path) override
    {
        calls.append(QStringLiteral("inspect ") + path);
        if (delay.count() > 0)
            co_await Pause(_clock, delay);
        co_return std::as_const(facts);
    }
    QCoro::Task<Result<void>> repair(const QString path) override
    {
        calls.append(QStringLiteral("repair ") + path);
        if (delay.count() > 0)
            co_await Pause(_clock, delay);
        co_return std::as_const(repairAnswer);
    }

private:
    Clock &_clock;
};

} // namespace velbrix::test
