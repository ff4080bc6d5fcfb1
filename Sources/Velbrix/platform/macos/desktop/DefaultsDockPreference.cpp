#include "platform/macos/desktop/DefaultsDockPreference.h"

#include "foundation/Log.h"

#include <utility>

using namespace Qt::StringLiterals;
using namespace std::chrono_literals;

namespace velbrix {
namespace {

// Both take milliseconds; a hanging one must not hold up the program's end.
constexpr auto patience = 10s;

ProcessRequest request(const QString &program, const QStringList &arguments)
{
    ProcessRequest request;
    request.program = program;
    request.arguments = arguments;
    request.timeout = patience;
    return request;
}

bool isYes(const QByteArray &output)
{
    const QByteArray value = output.trimmed().toLower();
    return value == "1" || value == "true" || value == "yes";
}

// Logs a program that did not start, and one that did not succeed.
Result<void> judged(const Result<ProcessOutcome> &run, const QString &notStarted, const QString &notDone)
{
    if (run && run->succeeded())
        return {};
    log::line(u"Wallpaper"_s,
              run ? notDone + QString::number(run->exitCode) : notStarted + run.error().message);
    return failure(u"无法更改程序坞的设置"_s);
}

// Takes copies, because its owner may be gone after a wait.
QCoro::Task<Result<void>> writeAutoHide(ProcessRunner runner, DefaultsDockPreference::Programs programs,
                                        bool hides)
{
    ProcessRequest writing = request(programs.defaults, {u"write"_s, u"com.apple.dock"_s, u"autohide"_s,
                                                         u"-bool"_s, hides ? u"true"_s : u"false"_s});
    const auto written = co_await runner.run(std::move(writing));
    const Result<void> isWritten =
        judged(written, u"failed to write Dock autohide: "_s, u"defaults write Dock autohide failed: "_s);
    if (!isWritten)
        co_return std::unexpected(isWritten.error());
    ProcessRequest reloading = request(programs.killall, {u"Dock"_s});
    const auto reloaded = co_await runner.run(std::move(reloading));
    co_return judged(reloaded, u"failed to reload Dock: "_s, u"killall Dock failed: "_s);
}

} // namespace

DefaultsDockPreference::DefaultsDockPreference(Clock &clock) : DefaultsDockPreference(clock, Programs()) {}

DefaultsDockPreference::DefaultsDockPreference(Clock &clock, Programs programs)
    : _runner(clock), _programs(std::move(programs))
{
}

QCoro::Task<Result<bool>> DefaultsDockPreference::autoHide()
{
    ProcessRequest reading = request(_programs.defaults, {u"read"_s, u"com.apple.dock"_s, u"autohide"_s});
    const auto read = co_await _runner.run(std::move(reading));
    if (!read || read->crashed || read->timedOut)
        co_return failure(u"无法读取程序坞的设置"_s);
    // It fails on a setting that was never made, and the Dock does not hide then.
    co_return read->succeeded() && isYes(read->output);
}

QCoro::Task<Result<void>> DefaultsDockPreference::setAutoHide(bool hides)
{
    return writeAutoHide(_runner, _programs, hides);
}

} // namespace velbrix
