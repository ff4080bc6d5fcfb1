#include "platform/macos/applications/OsascriptAdminShell.h"

#include <utility>

using namespace Qt::StringLiterals;

namespace velbrix {

OsascriptAdminShell::OsascriptAdminShell(Clock &clock, QString osascript)
    : _runner(clock), _osascript(std::move(osascript))
{
}

QCoro::Task<Result<ProcessOutcome>> OsascriptAdminShell::run(const QString line, Cancellation cancellation)
{
    ProcessRequest request;
    request.program = _osascript;
    request.arguments = {u"-e"_s, u"do shell script \""_s + line + u"\" with administrator privileges"_s};
    request.cancellation = cancellation;
    const auto outcome = co_await _runner.run(std::move(request));
    if (!outcome)
        co_return failure(u"无法询问管理员密码：%1"_s.arg(outcome.error().message));
    // userCanceledErr; the words around it are in the user's language.
    if (!outcome->succeeded() && outcome->errorOutput.contains("(-128)"))
        co_return failure(u"没有得到管理员授权"_s);
    co_return outcome;
}

} // namespace velbrix
