#include "maintenance/cleanup/CleanupTable.h"

#include "maintenance/cleanup/SeenTime.h"
#include "platform/RunningPrograms.h"
#include "platform/TrashCan.h"

#include <QCoroFuture>
#include <QPointer>
#include <QtConcurrent/QtConcurrentRun>

#include <algorithm>
#include <utility>

using namespace Qt::StringLiterals;

namespace velbrix {
namespace {

// What was touched since may still be open in a program.
constexpr std::chrono::hours leastAge{24};

// What only the disk can tell. Blocking, as the next.
CleanupBounds completed(CleanupBounds bounds, const CleanupRule &rule, const QList<CleanupRule> &rules,
                        const QSet<QString> &ids, const CleanupUse &use)
{
    QSet<QString> inUse;
    for (const CleanupUse::Folder &folder : use.folders)
        inUse.insert(folder.path);
    bounds.rules.protectedPaths = protectedHostPaths();
    bounds.areOthers = hasPattern(rule);
    if (!bounds.isTrash)
        bounds.folders = emptiedFolders(rule);
    bounds.folders.removeIf([&](const QString &folder) { return inUse.contains(folder); });
    for (const CleanupRule &other : rules) {
        if (other.item.id == rule.item.id || ids.contains(other.item.id))
            continue;
        const QString why =
            use.items.contains(other.item.id) ? u"「%1」的应用正在运行"_s : u"由「%1」一项清理"_s;
        for (const QString &folder : emptiedFolders(other))
            bounds.kept.append({folder, why.arg(other.item.name)});
    }
    for (const CleanupUse::Folder &folder : use.folders)
        bounds.kept.append({folder.path, u"%1 正在运行"_s.arg(folder.owner)});
    for (const QString &pattern : rule.sparedPaths) {
        for (const QString &folder : matchingFolders(pattern))
            bounds.kept.append({folder, u"不只是缓存"_s});
    }
    return bounds;
}

QList<CleanupUse::Folder> ownedFolders(const QList<CleanupRule> &rules)
{
    QList<CleanupUse::Folder> folders;
    for (const CleanupRule &rule : rules) {
        if (rule.folderOwner.isEmpty())
            continue;
        for (const QString &folder : emptiedFolders(rule))
            folders.append({rule.item.id, folder, ownerOf(folder, rule)});
    }
    return folders;
}

} // namespace

CleanupTable::CleanupTable(QList<CleanupRule> catalog, Ports ports, const SeenTime &seen,
                           QList<QByteArray> ownPaths)
    : _rules(std::move(catalog)), _ports(ports), _seen(seen), _ownPaths(std::move(ownPaths))
{
}

const CleanupRule *CleanupTable::rule(const QString &id) const
{
    const auto found = std::ranges::find(_rules, id, [](const CleanupRule &rule) { return rule.item.id; });
    return found == _rules.end() ? nullptr : &*found;
}

void CleanupTable::remove(const QString &id)
{
    _rules.removeIf([&](const CleanupRule &rule) { return rule.item.id == id; });
}

QStringList CleanupTable::trashFolders() const
{
    return _ports.trash.folders();
}

RemovalRules CleanupTable::removalRules(const CleanupRule &rule, const CleanupUse &use) const
{
    RemovalRules rules;
    rules.sealedPaths = _ownPaths;
    rules.boundSockets = use.sockets;
    if (rule.onlyOldOwnFiles) {
        rules.now = _seen.sureNow();
        rules.minimumAge = leastAge;
    }
    return rules;
}

QCoro::Task<CleanupBounds> CleanupTable::bounds(CleanupRule rule, QSet<QString> ids, CleanupUse use) const
{
    CleanupBounds bounds;
    bounds.rules = removalRules(rule, use);
    bounds.isTrash = rule.item.id == trashItemId;
    if (bounds.isTrash)
        bounds.folders = _ports.trash.itemFolders();
    const QFuture<CleanupBounds> looking =
        QtConcurrent::run(&cleanupThreads(), completed, bounds, rule, _rules, ids, use);
    co_return co_await looking;
}

QCoro::Task<CleanupUse> CleanupTable::use() const
{
    const QPointer alive(&_life);
    CleanupUse use;
    QList<CleanupRule> rules = _rules;
    const QFuture<QList<CleanupUse::Folder>> looking =
        QtConcurrent::run(&cleanupThreads(), ownedFolders, rules);
    use.folders = co_await looking;
    if (!alive)
        co_return use;
    QStringList owners;
    for (const CleanupRule &rule : std::as_const(rules))
        owners += rule.owners;
    for (const CleanupUse::Folder &folder : std::as_const(use.folders))
        owners.append(folder.owner);
    const QCoro::Task<QSet<QString>> asked = _ports.programs.running(owners);
    const QCoro::Task<std::optional<QSet<QByteArray>>> listening = _ports.programs.boundSockets();
    const QSet<QString> running = co_await asked;
    use.sockets = co_await listening;
    for (const CleanupRule &rule : std::as_const(rules)) {
        if (std::ranges::any_of(rule.owners, [&](const QString &owner) { return running.contains(owner); }))
            use.items.append(rule.item.id);
    }
    use.folders.removeIf([&](const CleanupUse::Folder &folder) { return !running.contains(folder.owner); });
    co_return use;
}

} // namespace velbrix
