#include "capture/MovieCheck.h"

#include "foundation/Deadline.h"

#include <QFileInfo>

using namespace Qt::StringLiterals;
using namespace std::chrono_literals;

namespace velbrix {
namespace {

constexpr auto limit = 3000ms;

QCoro::Task<MovieFacts> factsWithin(MovieFiles &movies, Clock &clock, QString path)
{
    const auto inspected = co_await withDeadline(clock, limit, movies.inspect(path));
    if (!inspected || !*inspected)
        co_return MovieFacts{};
    co_return **inspected;
}

} // namespace

QCoro::Task<bool> MovieCheck::plays(QString path)
{
    const MovieFacts facts = co_await factsWithin(_movies, _clock, path);
    co_return facts.isPlayable;
}

QCoro::Task<MovieReport> MovieCheck::inspect(QString path, bool systemMode)
{
    MovieReport report;
    report.exists = QFileInfo::exists(path);
    if (!report.exists)
        co_return report;
    const MovieFacts facts = co_await factsWithin(_movies, _clock, path);
    const QFileInfo file(path);
    report.isPlayable = facts.isPlayable;
    report.verdict = judgeMovie(facts, file.fileName(), file.size(), systemMode);
    if (!facts.hasVideo)
        report.remarks.append(u"no video, audioTracks=%1"_s.arg(facts.audioTracks));
    co_return report;
}

} // namespace velbrix
