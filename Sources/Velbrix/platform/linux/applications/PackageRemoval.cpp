#include "platform/linux/applications/PackageRemoval.h"

#include "foundation/Paths.h"
#include "platform/linux/applications/PackageQueries.h"

#include <QSet>

#include <algorithm>
#include <iterator>

using namespace Qt::StringLiterals;
using namespace std::chrono_literals;

namespace velbrix {
namespace {

// What pkexec answers itself.
constexpr int dismissed = 126;
constexpr int notAuthorized = 127;

// Never asks on a terminal, which would stop a program in the background.
QStringList asRoot(const PackagePrograms &programs, const QStringList &command)
{
    return QStringList{programs.pkexec, u"--disable-internal-agent"_s} + command;
}

// The command, or why there is none.
Result<QStringList> removalCommand(const ApplicationPlaces &places, const PackagePrograms &programs,
                                   const InstalledApplication &application)
{
    const QString manager = application.manager;
    const QString package = application.package;
    const auto missing = failure(u"没有找到 %1，无法移除 %2"_s.arg(manager, package));
    if (manager == u"Flatpak"_s) {
        if (programs.flatpak.isEmpty())
            return missing;
        const bool isUsers = isInside(application.path, places.userFlatpakFolder());
        return QStringList{programs.flatpak, u"uninstall"_s, u"-y"_s, isUsers ? u"--user"_s : u"--system"_s,
                           package};
    }
    if (programs.pkexec.isEmpty())
        return failure(u"没有找到 pkexec，无法取得移除软件包所需的管理员权限"_s);
    if (manager == u"Snap"_s)
        return programs.snap.isEmpty() ? Result<QStringList>(missing)
                                       : asRoot(programs, {programs.snap, u"remove"_s, package});
    const auto system = systemPackageManager(programs);
    if (!system || system->name != manager || programs.env.isEmpty())
        return missing;
    const QStringList quietly{programs.env, u"DEBIAN_FRONTEND=noninteractive"_s};
    return asRoot(programs, quietly + system->removal + QStringList{package});
}

Result<void> refusal(const InstalledApplication &application)
{
    if (application.kind != InstalledApplication::Kind::managed || !isPackageName(application.package))
        return failure(u"「%1」不是由软件包管理器安装的"_s.arg(application.name));
    return {};
}

Result<void> judged(const ProcessOutcome &outcome, bool isThroughPkexec,
                    const InstalledApplication &application)
{
    if (outcome.succeeded())
        return {};
    if (isThroughPkexec && outcome.exitCode == dismissed)
        return failure(u"没有输入密码，%1 未被移除"_s.arg(application.package));
    if (isThroughPkexec && outcome.exitCode == notAuthorized)
        return failure(u"没有取得管理员权限，%1 未被移除：%2"_s.arg(application.package, lastLine(outcome)));
    return failure(u"%1 没有移除 %2：%3"_s.arg(application.manager, application.package, lastLine(outcome)));
}

// Without the machine a package is for.
QString plainName(const QString &package)
{
    return package.section(u':', 0, 0);
}

// Without these there is no session to work in, or none to log in to.
bool carriesTheDesktop(const QString &package)
{
    static const QSet<QString> core = {
        u"cinnamon"_s,
        u"dbus"_s,
        u"dbus-broker"_s,
        u"gdm"_s,
        u"gdm3"_s,
        u"gnome-session"_s,
        u"gnome-shell"_s,
        u"lightdm"_s,
        u"lxqt-session"_s,
        u"lxsession"_s,
        u"mate-session-manager"_s,
        u"pkexec"_s,
        u"plasma-desktop"_s,
        u"plasma-workspace"_s,
        u"polkit"_s,
        u"polkitd"_s,
        u"sddm"_s,
        u"systemd"_s,
        u"xfce4-session"_s,
        u"xorg-server"_s,
        u"xorg-x11-server-Xorg"_s,
        u"xserver-xorg-core"_s,
    };
    return core.contains(plainName(package));
}

// Fails when the manager refuses, or when the system or the owner of
// `ownExecutable` would go too.
QCoro::Task<Result<QStringList>> simulatedRemoval(Clock &clock, PackageManager manager, QString package,
                                                  QString ownExecutable)
{
    ProcessRunner runner(clock);
    ProcessRequest request = hostCommand(manager.simulation + QStringList{package});
    request.timeout = 60s;
    const auto outcome = co_await runner.run(request);
    if (!outcome)
        co_return std::unexpected(outcome.error());
    const QStringList removed = manager.removed(outcome->output);
    const auto isAsked = [&](const QString &name) { return plainName(name) == plainName(package); };
    if (outcome->crashed || outcome->timedOut || !std::ranges::any_of(removed, isAsked))
        co_return failure(u"%1 不能移除软件包 %2：%3"_s.arg(manager.name, package, lastLine(*outcome)));

    const auto facts = co_await packageFacts(clock, manager, removed);
    QStringList needed;
    std::ranges::copy_if(removed, std::back_inserter(needed), carriesTheDesktop);
    for (auto each = facts.begin(); each != facts.end(); ++each) {
        if (each->isEssential && !needed.contains(each.key()))
            needed.append(each.key());
    }
    needed.sort();
    if (!needed.isEmpty())
        co_return failure(u"不能移除 %1：系统或桌面离不开软件包 %2"_s.arg(package, needed.join(u"、"_s)));
    const QStringList own{ownExecutable};
    const auto owners = co_await packageOwners(clock, manager, own);
    const QString ours = owners ? owners->value(ownExecutable) : QString();
    if (!ours.isEmpty() &&
        std::ranges::any_of(removed, [&](const QString &name) { return plainName(name) == plainName(ours); }))
        co_return failure(u"不能移除 %1：Velbrix 自身会一起被移除"_s.arg(package));
    co_return removed;
}

} // namespace

QCoro::Task<Result<QStringList>> simulateRemoval(Clock &clock, ApplicationPlaces places,
                                                 PackagePrograms programs, InstalledApplication application)
{
    if (const auto allowed = refusal(application); !allowed)
        co_return std::unexpected(allowed.error());
    const QString package = application.package;
    if (application.manager == u"Flatpak"_s || application.manager == u"Snap"_s)
        co_return QStringList{package};
    const auto manager = systemPackageManager(programs);
    if (!manager || manager->name != application.manager)
        co_return failure(u"没有找到 %1，无法移除 %2"_s.arg(application.manager, package));
    const auto removed = co_await simulatedRemoval(clock, *manager, package, places.executable);
    co_return removed;
}

QCoro::Task<Result<void>> removeThroughManager(Clock &clock, ApplicationPlaces places,
                                               PackagePrograms programs, InstalledApplication application,
                                               QStringList agreed, Cancellation cancellation)
{
    const auto command = removalCommand(places, programs, application);
    const auto simulated = co_await simulateRemoval(clock, places, programs, application);
    if (!simulated)
        co_return std::unexpected(simulated.error());
    QStringList beyond = *simulated;
    beyond.removeIf([&](const QString &package) { return agreed.contains(package); });
    if (!beyond.isEmpty())
        co_return failure(u"还会一并移除 %1，确认时没有列出，没有卸载"_s.arg(beyond.join(u"、"_s)));
    if (!command)
        co_return std::unexpected(command.error());
    if (cancellation.isCancelled())
        co_return failure(u"已取消"_s);
    ProcessRunner runner(clock);
    // Without a timeout and without the cancellation.
    const ProcessRequest request = hostCommand(*command);
    const auto outcome = co_await runner.run(request);
    if (!outcome)
        co_return std::unexpected(outcome.error());
    co_return judged(*outcome, command->first() == programs.pkexec, application);
}

} // namespace velbrix
