#include "platform/linux/processes/PolkitAdminShell.h"

#include <QFileInfo>
#include <QStandardPaths>

using namespace Qt::StringLiterals;

namespace velbrix {
namespace {

constexpr int notAuthorised = 127;

bool couldNotAsk(const ProcessOutcome &outcome)
{
    return outcome.exitCode == notAuthorised && outcome.errorOutput.contains("No authentication agent");
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
    if (couldNotAsk(*outcome))
        co_return failure(u"桌面没有运行 polkit 认证代理，无法询问管理员密码"_s);
    co_return outcome;
}

} // namespace velbrix
