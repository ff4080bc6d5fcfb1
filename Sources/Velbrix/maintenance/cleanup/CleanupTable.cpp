#include "maintenance/cleanup/CleanupTable.h"

#include "foundation/Clock.h"
#include "maintenance/cleanup/ItemCleaner.h"
#include "platform/RunningPrograms.h"
#include "platform/TrashCan.h"

#include <algorithm>
#include <utility>

using namespace Qt::StringLiterals;

namespace velbrix {
namespace {

// What was touched since may still be open in a program.
constexpr std::chrono::hours leastAge{24};

} // namespace

CleanupTable::CleanupTable(QList<CleanupRule> catalog, Ports ports, Clock &clock, QList<QByteArray> ownPaths)
    : _rules(std::move(catalog)), _ports(ports), _clock(clock), _ownPaths(std::move(ownPaths))
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

CleanupBounds CleanupTable::bounds(const CleanupRule &rule, const QSet<QString> &ids,
                                   const CleanupUse &use) const
{
    CleanupBounds bounds;
    bounds.rules = removalRules(rule);
    bounds.areOthers = hasPattern(rule);
    bounds.isTrash = rule.item.id == trashItemId;
    bounds.folders = bounds.isTrash ? _ports.trash.itemFolders() : emptiedFolders(rule);
    bounds.folders.removeIf([&](const QString &folder) { return use.folders.contains(folder); });
    for (const CleanupRule &other : _rules) {
        if (other.item.id == rule.item.id || ids.contains(other.item.id))
            continue;
        const QString why =
            use.items.contains(other.item.id) ? u"「%1」的应用正在运行"_s : u"由「%1」一项清理"_s;
        for (const QString &folder : emptiedFolders(other))
            bounds.kept.append({folder, why.arg(other.item.name)});
    }
    for (auto folder = use.folders.begin(); folder != use.folders.end(); ++folder)
        bounds.kept.append({folder.key(), u"%1 正在运行"_s.arg(folder.value())});
    for (const QString &pattern : rule.sparedPaths) {
        for (const QString &folder : matchingFolders(pattern))
            bounds.kept.append({folder, u"不只是缓存"_s});
    }
    return bounds;
}

QStringList CleanupTable::measuredFolders(const CleanupRule &rule) const
{
    return rule.item.id == trashItemId ? _ports.trash.folders() : velbrix::measuredFolders(rule);
}

RemovalRules CleanupTable::removalRules(const CleanupRule &rule) const
{
    RemovalRules rules;
    rules.protectedPaths = protectedHostPaths();
    rules.sealedPaths = _ownPaths;
    rules.boundSockets = _ports.programs.boundSockets();
    rules.now = _clock.now().toSecsSinceEpoch();
    if (rule.onlyOldOwnFiles)
        rules.minimumAge = leastAge;
    return rules;
}

CleanupUse CleanupTable::use() const
{
    QStringList owners;
    QHash<QString, QString> folders;
    for (const CleanupRule &rule : _rules) {
        owners += rule.owners;
        if (rule.folderOwner.isEmpty())
            continue;
        for (const QString &folder : emptiedFolders(rule))
            folders.insert(folder, ownerOf(folder, rule));
    }
    const QSet<QString> running = _ports.programs.running(owners + folders.values());
    CleanupUse use;
    for (const CleanupRule &rule : _rules) {
        if (std::ranges::any_of(rule.owners, [&](const QString &owner) { return running.contains(owner); }))
            use.items.append(rule.item.id);
    }
    for (auto folder = folders.begin(); folder != folders.end(); ++folder) {
        if (running.contains(folder.value()))
            use.folders.insert(folder.key(), folder.value());
    }
    return use;
}

} // namespace velbrix
