#include "maintenance/cleanup/SystemCleaner.h"

#include "foundation/SettingsStore.h"
#include "maintenance/cleanup/CustomFolder.h"
#include "platform/RunningPrograms.h"
#include "platform/TrashCan.h"

#include <QJsonArray>

#include <algorithm>
#include <utility>

using namespace Qt::StringLiterals;

namespace velbrix {
namespace {

constexpr std::chrono::hours leastAge{24};

bool liesInside(const QString &path, const QString &folder)
{
    return path.startsWith(folder + u'/');
}

bool isWanted(const CleanupItem &item, const QStringList &ids)
{
    return ids.isEmpty() ? item.isSelected : ids.contains(item.id);
}

QStringList strings(const std::optional<QJsonValue> &stored)
{
    QStringList values;
    for (const QJsonValue &value : stored.value_or(QJsonValue()).toArray()) {
        if (value.isString())
            values.append(value.toString());
    }
    return values;
}

} // namespace

SystemCleaner::SystemCleaner(const Hosts &hosts, SettingsStore &settings, Clock &clock,
                             QList<CleanupRule> catalog, QList<QByteArray> ownPlaces, QObject *parent)
    : QObject(parent),
      _hosts(hosts),
      _settings(settings),
      _clock(clock),
      _processes(clock),
      _catalog(std::move(catalog)),
      _ownPlaces(std::move(ownPlaces)),
      _leftOut(settings)
{
    load();
}

SystemCleaner::~SystemCleaner()
{
    cancel();
    for (Cancellation &opening : _openings)
        opening.cancel();
}

void SystemCleaner::load()
{
    QList<CleanupItem> items;
    for (const CleanupRule &rule : std::as_const(_catalog))
        items.append(rule.item);
    for (const QString &path : strings(_settings.json(customPathsKey))) {
        // A relative one would mean another folder with every start.
        if (!path.startsWith(u'/') && path != u"~" && !path.startsWith(u"~/"))
            continue;
        const CleanupItem custom = customItem(standardizedPath(path));
        if (std::ranges::find(items, custom.id, &CleanupItem::id) == items.end())
            items.append(custom);
    }
    const auto selection = _settings.json(defaultsKey);
    if (selection && selection->isArray()) {
        const QStringList selected = strings(selection);
        for (CleanupItem &item : items)
            item.isSelected = selected.contains(item.id);
    }
    QStringList ids;
    for (const CleanupItem &item : std::as_const(items))
        ids.append(item.id);
    _leftOut.load(ids);
    _items = items;
}

const CleanupRule *SystemCleaner::rule(const QString &id) const
{
    const auto found = std::ranges::find(_catalog, id, [](const CleanupRule &rule) { return rule.item.id; });
    return found == _catalog.end() ? nullptr : &*found;
}

const CleanupItem *SystemCleaner::item(const QString &id) const
{
    const auto &items = _items.value();
    const auto found = std::ranges::find(items, id, &CleanupItem::id);
    return found == items.end() ? nullptr : &*found;
}

CleanupGroup SystemCleaner::group(const QString &id) const
{
    const CleanupRule *known = rule(id);
    return known ? known->group : CleanupGroup::custom;
}

bool SystemCleaner::isAdministrative(const QString &id) const
{
    const CleanupRule *known = rule(id);
    return known && known->target.requiresAdmin;
}

bool SystemCleaner::hasContents(const QString &id) const
{
    return id != trashItemId && !emptiedFolders(id).isEmpty();
}

std::optional<qint64> SystemCleaner::measuredBytes(const QString &id) const
{
    const auto found = _bytes.find(id);
    return found == _bytes.end() ? std::nullopt : std::optional(*found);
}

qint64 SystemCleaner::selectedBytes() const
{
    QStringList counted;
    qint64 total = 0;
    const QList<CleanupItem> items = itemsToClean();
    for (const CleanupItem &item : items)
        counted += measuredFolders(item.id);
    for (const CleanupItem &item : items) {
        const QStringList folders = measuredFolders(item.id);
        const bool isInside = std::ranges::any_of(folders, [&](const QString &folder) {
            return std::ranges::any_of(counted,
                                       [&](const QString &other) { return liesInside(folder, other); });
        });
        if (!isInside)
            total += measuredBytes(item.id).value_or(0);
    }
    return total;
}

CleanupTarget SystemCleaner::target(const CleanupItem &item) const
{
    if (const CleanupRule *known = rule(item.id))
        return known->target;
    return {item.id, item.name, item.customPath, {}, false};
}

QStringList SystemCleaner::emptiedFolders(const QString &id) const
{
    const CleanupRule *known = rule(id);
    if (!known) {
        const CleanupItem *custom = item(id);
        return custom && custom->customPath ? QStringList{*custom->customPath} : QStringList();
    }
    QStringList folders;
    if (known->target.path)
        folders = matchingFolders(*known->target.path);
    return folders + known->furtherPaths;
}

QStringList SystemCleaner::measuredFolders(const QString &id) const
{
    if (id == trashItemId)
        return _hosts.trash.folders();
    const CleanupRule *known = rule(id);
    if (!known)
        return emptiedFolders(id);
    QStringList folders;
    for (const QString &pattern : known->measured)
        folders += matchingFolders(pattern);
    return folders;
}

// Those of items which are not cleaned.
QStringList SystemCleaner::foldersOfOthers(const QString &id, const QSet<QString> &cleaned) const
{
    QStringList folders;
    for (const CleanupItem &other : _items.value()) {
        if (other.id != id && !cleaned.contains(other.id))
            folders += emptiedFolders(other.id);
    }
    return folders;
}

bool SystemCleaner::isSkipped(const CleanupItem &item) const
{
    return _busyItems.value().contains(item.id) && !_forcedItems.value().contains(item.id);
}

RemovalRules SystemCleaner::removalRules(const QString &id) const
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

void SystemCleaner::change(const QString &id, const std::function<void(CleanupItem &)> &edit)
{
    QList<CleanupItem> items = _items;
    const auto found = std::ranges::find(items, id, &CleanupItem::id);
    if (found == items.end())
        return;
    edit(*found);
    _items = items;
}

void SystemCleaner::setSelected(const QString &id, bool isSelected)
{
    change(id, [&](CleanupItem &item) { item.isSelected = isSelected; });
    saveSelection();
}

void SystemCleaner::setAllSelected(bool isSelected)
{
    QList<CleanupItem> items = _items;
    for (CleanupItem &item : items)
        item.isSelected = isSelected;
    _items = items;
    saveSelection();
}

void SystemCleaner::setForced(const QString &id, bool isForced)
{
    QSet<QString> forced = _forcedItems;
    if (isForced)
        forced.insert(id);
    else
        forced.remove(id);
    _forcedItems = forced;
}

void SystemCleaner::saveSelection()
{
    QJsonArray selected;
    for (const CleanupItem &item : _items.value()) {
        if (item.isSelected)
            selected.append(item.id);
    }
    _settings.set(defaultsKey, selected);
}

void SystemCleaner::saveCustomPaths()
{
    QJsonArray paths;
    for (const CleanupItem &item : _items.value()) {
        if (item.customPath)
            paths.append(*item.customPath);
    }
    _settings.set(customPathsKey, paths);
    saveSelection();
}

Result<void> SystemCleaner::addCustomPath(const QString &path)
{
    const CleanupItem custom = customItem(standardizedPath(path));
    if (const QString obstacle = customFolderObstacle(*custom.customPath, removalRules(custom.id));
        !obstacle.isEmpty())
        return failure(obstacle);
    if (item(custom.id))
        return failure(u"该路径已添加"_s);
    const auto count = std::ranges::count_if(
        _items.value(), [](const CleanupItem &item) { return item.customPath.has_value(); });
    if (count >= maxCustomPathsAllowed)
        return failure(u"最多可添加 %1 个自定义文件夹"_s.arg(maxCustomPathsAllowed));
    _items = _items.value() + QList<CleanupItem>{custom};
    saveCustomPaths();
    estimate({custom.id}, Cancellation());
    return {};
}

void SystemCleaner::removeCustomPath(const QString &id)
{
    if (rule(id))
        return;
    QList<CleanupItem> items = _items;
    items.removeIf([&](const CleanupItem &item) { return item.id == id; });
    close(id);
    _bytes.remove(id);
    _leftOut.remove(id);
    _items = items;
    saveCustomPaths();
}

bool SystemCleaner::isWorking() const
{
    return _isCleaning || _phase.value().kind == CleanupPhase::Kind::calculating;
}

void SystemCleaner::cancel()
{
    _work.cancel();
    if (_stopRemoval)
        *_stopRemoval = true;
}

void SystemCleaner::refreshBusyItems()
{
    QStringList owners;
    for (const CleanupRule &rule : std::as_const(_catalog))
        owners += rule.owners;
    const QSet<QString> running = _hosts.programs.running(owners);
    QStringList busy;
    for (const CleanupRule &rule : std::as_const(_catalog)) {
        if (std::ranges::any_of(rule.owners, [&](const QString &owner) { return running.contains(owner); }))
            busy.append(rule.item.id);
    }
    _busyItems = busy;
}

QList<CleanupItem> SystemCleaner::itemsToClean(const QStringList &ids) const
{
    QList<CleanupItem> taken;
    for (const CleanupItem &item : _items.value()) {
        if (isWanted(item, ids) && !isSkipped(item))
            taken.append(item);
    }
    return taken;
}

QString SystemCleaner::obstacle(const QStringList &ids) const
{
    if (!itemsToClean(ids).isEmpty())
        return {};
    return itemsToSkip(ids).isEmpty() ? u"没有选择任何清理项"_s : u"所选项目的应用正在运行，没有清理"_s;
}

QStringList SystemCleaner::itemsToSkip(const QStringList &ids) const
{
    QStringList skipped;
    for (const CleanupItem &item : _items.value()) {
        if (isWanted(item, ids) && isSkipped(item))
            skipped.append(item.name);
    }
    return skipped;
}

} // namespace velbrix
