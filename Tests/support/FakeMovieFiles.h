#pragma once

#include "platform/MovieFiles.h"
#include "support/AnswerTime.h"
#include <utility>

#include <QFileInfo>
#include <QStringList>

namespace velbrix::test {

// Movies that are what the test says, as long as the file is there and has something in it.
class FakeMovieFiles final : public MovieFiles {
public:
    explicit FakeMovieFiles(Clock &clock) : _answer(clock) {}

    std::chrono::milliseconds delay{0};
    Result<MovieFacts> facts =
        MovieFacts{.isPlayable = true, .duration = 5.0, .hasVideo = true, .audioTracks = 1};
    Result<void> repairAnswer;
    QStringList calls; // "inspect PATH", "repair PATH"

    QCoro::Task<Result<MovieFacts>> inspect(const QString path) override
    {
        calls.append(QStringLiteral("inspect ") + path);
        co_await _answer.after(delay);
        if (!QFileInfo::exists(path))
            co_return failure(QStringLiteral("文件不存在"));
        if (QFileInfo(path).size() == 0)
            co_return MovieFacts();
        co_return std::as_const(facts);
    }
    QCoro::Task<Result<void>> repair(const QString path) override
    {
        calls.append(QStringLiteral("repair ") + path);
        co_await _answer.after(delay);
        if (!QFileInfo::exists(path))
            co_return failure(QStringLiteral("文件不存在"));
        co_return std::as_const(repairAnswer);
    }

private:
    AnswerTime _answer;
};

} // namespace velbrix::test
