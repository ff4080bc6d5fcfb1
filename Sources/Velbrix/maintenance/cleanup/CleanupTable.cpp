#include "maintenance/cleanup/CleanupTable.h"

#include "foundation/Clock.h"
#include "platform/RunningPrograms.h"
#include "platform/TrashCan.h"

#include <algorithm>
#include <utility>

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

QStringList CleanupTable::foldersOutside(const QSet<QString> &ids) const
{
    QStringList folders;
    for (const CleanupRule &rule : _rules) {
        if (!ids.contains(rule.item.id))
            folders += emptiedFolders(rule);
    }
    return folders;
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

QStringList CleanupTable::busyItems() const
{
    QStringList owners;
    for (const CleanupRule &rule : _rules)
        owners += rule.owners;
    const QSet<QString> running = _ports.programs.running(owners);
    QStringList busy;
    for (const CleanupRule &rule : _rules) {
        if (std::ranges::any_of(rule.owners, [&](const QString &owner) { return running.contains(owner); }))
            busy.append(rule.item.id);
    }
    return busy;
}

} // namespace velbrix
