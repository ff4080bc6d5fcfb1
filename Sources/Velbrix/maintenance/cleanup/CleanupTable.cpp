#include "maintenance/cleanup/CleanupTable.h"

#include "foundation/Clock.h"
#include "platform/RunningPrograms.h"
#include "platform/TrashCan.h"

#include <algorithm>
#include <utility>

namespace velbrix {
namespace {

constexpr std::chrono::hours leastAge{24};

// A folder of the user's is that folder, whatever characters it is called by.
bool isCustom(const CleanupRule &rule)
{
    return rule.item.customPath.has_value();
}

QStringList emptied(const CleanupRule &rule)
{
    if (isCustom(rule))
        return {*rule.item.customPath};
    const QStringList folders = rule.target.path ? matchingFolders(*rule.target.path) : QStringList();
    return folders + rule.furtherPaths;
}

} // namespace

CleanupTable::CleanupTable(QList<CleanupRule> catalog, Hosts hosts, Clock &clock, QList<QByteArray> ownPlaces)
    : _rules(std::move(catalog)), _hosts(hosts), _clock(clock), _ownPlaces(std::move(ownPlaces))
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

QStringList CleanupTable::emptiedFolders(const QString &id) const
{
    const CleanupRule *known = rule(id);
    return known ? emptied(*known) : QStringList();
}

QStringList CleanupTable::foldersOutside(const QSet<QString> &ids) const
{
    QStringList folders;
    for (const CleanupRule &rule : _rules) {
        if (!ids.contains(rule.item.id))
            folders += emptied(rule);
    }
    return folders;
}

QStringList CleanupTable::measuredFolders(const QString &id) const
{
    if (id == trashItemId)
        return _hosts.trash.folders();
    const CleanupRule *known = rule(id);
    if (!known)
        return {};
    if (isCustom(*known))
        return emptied(*known);
    QStringList folders;
    for (const QString &pattern : known->measured)
        folders += matchingFolders(pattern);
    return folders;
}

RemovalRules CleanupTable::removalRules(const QString &id) const
{
    RemovalRules rules;
    rules.protectedPlaces = protectedHostPlaces();
    rules.sealedPlaces = _ownPlaces;
    rules.boundSockets = _hosts.programs.boundSockets();
    rules.now = _clock.now().toSecsSinceEpoch();
    const CleanupRule *known = rule(id);
    if (known && known->onlyOldOwnFiles)
        rules.minimumAge = leastAge;
    return rules;
}

FolderCleaning CleanupTable::cleaning(const QString &id) const
{
    FolderCleaning cleaning;
    cleaning.folders = emptiedFolders(id);
    cleaning.rules = removalRules(id);
    const CleanupRule *known = rule(id);
    cleaning.withoutLinks =
        known && !isCustom(*known) && known->target.path && isPattern(*known->target.path);
    return cleaning;
}

QStringList CleanupTable::busyItems() const
{
    QStringList owners;
    for (const CleanupRule &rule : _rules)
        owners += rule.owners;
    const QSet<QString> running = _hosts.programs.running(owners);
    QStringList busy;
    for (const CleanupRule &rule : _rules) {
        if (std::ranges::any_of(rule.owners, [&](const QString &owner) { return running.contains(owner); }))
            busy.append(rule.item.id);
    }
    return busy;
}

} // namespace velbrix
