#include "platform/linux/applications/SystemPackages.h"

#include "platform/linux/applications/HostCommand.h"

#include <QFile>
#include <QRegularExpression>
#include <QSet>

#include <algorithm>
#include <iterator>

using namespace Qt::StringLiterals;
using namespace std::chrono_literals;

namespace velbrix {
namespace {

constexpr qsizetype bytesAtOnce = 512 << 10; // well below what one program takes

// Owners are looked up by exact path; in some managers these are patterns.
bool canBeAsked(const QString &path)
{
    static const QRegularExpression special(u"[*?\\[\\]\\\\\\x00-\\x1f]"_s);
    return !path.contains(special);
}

QList<QStringList> portions(const QStringList &words)
{
    QList<QStringList> parts;
    qsizetype bytes = bytesAtOnce;
    for (const QString &word : words) {
        const qsizetype more = QFile::encodeName(word).size() + 16;
        if (bytes + more > bytesAtOnce) {
            parts.append(QStringList());
            bytes = 0;
        }
        bytes += more;
        parts.last().append(word);
    }
    return parts;
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

} // namespace

QCoro::Task<Result<QHash<QString, QString>>> packageOwners(Clock &clock, PackageManager manager,
                                                           QStringList paths)
{
    ProcessRunner runner(clock);
    QHash<QString, QString> owners;
    paths.removeIf([](const QString &path) { return !canBeAsked(path); });
    const QList<QStringList> parts = portions(paths);
    for (const QStringList &part : parts) {
        ProcessRequest request = hostCommand(manager.ownerQuery + part);
        request.timeout = 20s;
        request.outputLimit = 64 << 20;
        const auto outcome = co_await runner.run(request);
        if (!outcome)
            co_return std::unexpected(outcome.error());
        // Exits with an error as soon as one path has no owner.
        if (outcome->crashed || outcome->timedOut)
            co_return failure(manager.name + u" 没有回答文件属于哪个软件包"_s);
        owners.insert(manager.owners(outcome->output));
    }
    co_return owners;
}

QCoro::Task<QHash<QString, PackageFacts>> packageFacts(Clock &clock, PackageManager manager,
                                                       QStringList packages)
{
    ProcessRunner runner(clock);
    QHash<QString, PackageFacts> facts;
    packages.removeIf([](const QString &package) { return !isPackageName(package); });
    const QList<QStringList> parts = portions(packages);
    for (const QStringList &part : parts) {
        ProcessRequest request = hostCommand(manager.factsQuery + part);
        request.timeout = 20s;
        request.outputLimit = 16 << 20;
        const auto outcome = co_await runner.run(request);
        if (outcome && !outcome->crashed && !outcome->timedOut)
            facts.insert(manager.facts(outcome->output));
    }
    co_return facts;
}

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

} // namespace velbrix
