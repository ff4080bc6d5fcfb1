#include "capture/MovieCheck.h"

#include "foundation/Awaitables.h"

#include <QFileInfo>

using namespace Qt::StringLiterals;
using namespace std::chrono_literals;

namespace velbrix {
namespace {

constexpr auto limit = 3000ms;

QCoro::Task<Result<MovieFacts>> factsWithin(MovieFiles &movies, Clock &clock, QString path)
{
    const auto inspected = co_await withDeadline(clock, limit, movies.inspect(path));
    if (!inspected)
        co_return failure(u"三秒内没有完成校验"_s);
    co_return *inspected;
}

} // namespace

QCoro::Task<std::optional<bool>> MovieCheck::plays(QString path)
{
    const auto facts = co_await factsWithin(_movies, _clock, path);
    if (!facts)
        co_return std::nullopt;
    co_return std::optional(facts->isPlayable);
}

QCoro::Task<MovieReport> MovieCheck::inspect(QString path, bool systemMode)
{
    MovieReport report;
    report.exists = QFileInfo::exists(path);
    if (!report.exists)
        co_return report;
    const auto inspected = co_await factsWithin(_movies, _clock, path);
    const MovieFacts facts = inspected.value_or(MovieFacts{});
    const QFileInfo file(path);
    report.isPlayable = facts.isPlayable;
    report.verdict = judgeMovie(facts, file.fileName(), file.size(), systemMode);
    if (!inspected)
        report.remarks.append(u"校验没有结果，文件保留：%1"_s.arg(inspected.error().message));
    else if (!facts.hasVideo)
        report.remarks.append(u"no video, audioTracks=%1"_s.arg(facts.audioTracks));
    co_return report;
}

} // namespace velbrix
