#include "platform/linux/processes/PolkitAdminShell.h"

#include <QFileInfo>
#include <QStandardPaths>

using namespace Qt::StringLiterals;

namespace velbrix {
namespace {

constexpr int dismissed = 126;
constexpr int notAuthorised = 127;

// Why pkexec did not run the line; empty when it did. The line's own end may
// have the same status.
QString refusalIn(const ProcessOutcome &outcome)
{
    if (outcome.exitCode == notAuthorised && outcome.errorOutput.contains("No authentication agent"))
        return u"桌面没有运行 polkit 认证代理，无法询问管理员密码"_s;
    const bool mayBeRefused = outcome.exitCode == dismissed || outcome.exitCode == notAuthorised;
    const bool isRefused =
        mayBeRefused && outcome.errorOutput.contains("Error executing command as another user");
    return isRefused ? u"没有得到管理员授权"_s : QString();
}

} // namespace

PolkitAdminShell::PolkitAdminShell(Clock &clock, QString pkexec) : _runner(clock), _pkexec(std::move(pkexec))
{
}

QString PolkitAdminShell::findPkexec()
{
    // Never where the user's own PATH leads.
    return QStandardPaths::findExecutable(
        u"pkexec"_s, {u"/run/wrappers/bin"_s, u"/usr/bin"_s, u"/bin"_s, u"/usr/local/bin"_s});
}

QCoro::Task<Result<ProcessOutcome>> PolkitAdminShell::run(const QString line, Cancellation cancellation)
{
    if (!QFileInfo(_pkexec).isExecutable())
        co_return failure(u"没有安装 pkexec（polkit），无法取得管理员权限"_s);
    ProcessRequest request;
    request.program = _pkexec;
    // pkexec's own agent would ask on a terminal nobody looks at, and stop there for good.
    request.arguments = {u"--disable-internal-agent"_s, u"/bin/sh"_s, u"-c"_s, line};
    request.cancellation = cancellation;
    const auto outcome = co_await _runner.run(std::move(request));
    if (!outcome)
        co_return failure(u"无法启动 pkexec：%1"_s.arg(outcome.error().message));
    if (const QString reason = refusalIn(*outcome); !reason.isEmpty())
        co_return failure(reason);
    co_return outcome;
}

} // namespace velbrix
