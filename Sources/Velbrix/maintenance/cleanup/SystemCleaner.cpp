#include "maintenance/cleanup/SystemCleaner.h"

#include "foundation/Text.h"

#include <QFile>
#include <QFileInfo>
#include <QPointer>

#include <algorithm>
#include <utility>

using namespace Qt::StringLiterals;
using namespace std::chrono_literals;

namespace velbrix {
namespace {

// Leaves each item's name on the page long enough to be seen.
constexpr auto afterEachItem = 100ms;

const QString nothingToShow = u"无数据"_s;

QList<CleanupRule> withFolders(QList<CleanupRule> catalog, const QStringList &customPaths)
{
    for (const QString &path : customPaths)
        catalog.append(customRule(path));
    return catalog;
}

bool isWanted(const CleanupItem &item, const QStringList &ids)
{
    return ids.isEmpty() ? item.isSelected : ids.contains(item.id);
}

QStringList idsOf(const QList<CleanupItem> &items)
{
    QStringList ids;
    for (const CleanupItem &item : items)
        ids.append(item.id);
    return ids;
}

} // namespace

SystemCleaner::SystemCleaner(const Ports &ports, SettingsStore &settings, Clock &clock,
                             QList<CleanupRule> catalog, QList<QByteArray> ownPaths, QObject *parent)
    : QObject(parent),
      _clock(clock),
      _choices(settings),
      _table(withFolders(std::move(catalog), _choices.customPaths()), {ports.trash, ports.programs}, clock,
             std::move(ownPaths)),
      _sizes(_table, ports.usage),
      _details(_table, _choices, ports.usage, clock),
      _itemCleaner({ports.trash, ports.admin}, clock)
{
    QList<CleanupItem> items;
    for (const CleanupRule &rule : _table.rules())
        items.append(rule.item);
    if (const auto selected = _choices.selected()) {
        for (CleanupItem &item : items)
            item.isSelected = selected->contains(item.id);
    }
    _items = items;
    _choices.loadExcluded(idsOf(items));
    connect(&_sizes, &CleanupSizes::measured, this, &SystemCleaner::showSize);
    _job.follow(*this, &SystemCleaner::phaseChanged, &SystemCleaner::progressChanged);
}

SystemCleaner::~SystemCleaner()
{
    cancel();
}

Job::State SystemCleaner::jobState() const
{
    if (_isCleaning)
        return {.what = u"正在清理"_s, .progress = _progress, .isBusy = true};
    return {.what = isWorking() ? u"正在计算大小"_s : QString()};
}

CleanupGroup SystemCleaner::group(const QString &id) const
{
    const CleanupRule *known = _table.rule(id);
    return known ? known->group : CleanupGroup::custom;
}

bool SystemCleaner::isAdministrative(const QString &id) const
{
    const CleanupRule *known = _table.rule(id);
    return known && known->target.requiresAdmin;
}

qint64 SystemCleaner::selectedBytes() const
{
    return _sizes.total(idsOf(itemsToClean()));
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
    _choices.saveSelection(_items);
}

void SystemCleaner::setAllSelected(bool isSelected)
{
    QList<CleanupItem> items = _items;
    for (CleanupItem &item : items)
        item.isSelected = isSelected;
    _items = items;
    _choices.saveSelection(_items);
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

Result<void> SystemCleaner::addCustomPath(const QString &path)
{
    const QString folder = standardizedPath(path);
    const CleanupRule custom = customRule(folder);
    const QString &id = custom.item.id;
    if (!QFileInfo(folder).isDir())
        return failure(u"请选择存在的文件夹"_s);
    if (const QString obstacle =
            RemovalRoot::obstacle(QFile::encodeName(folder), _table.removalRules(custom));
        !obstacle.isEmpty())
        return failure(obstacle);
    if (_table.rule(id))
        return failure(u"该路径已添加"_s);
    const auto count = std::ranges::count(_table.rules(), CleanupGroup::custom, &CleanupRule::group);
    if (count >= maxCustomPathsAllowed)
        return failure(u"最多可添加 %1 个自定义文件夹"_s.arg(maxCustomPathsAllowed));
    _table.add(custom);
    _items = _items.value() + QList<CleanupItem>{custom.item};
    _choices.save(_items);
    measure({id}, Cancellation());
    return {};
}

void SystemCleaner::removeCustomPath(const QString &id)
{
    if (group(id) != CleanupGroup::custom)
        return;
    QList<CleanupItem> items = _items;
    items.removeIf([&](const CleanupItem &item) { return item.id == id; });
    _table.remove(id);
    _details.close(id);
    _choices.includeAll(id);
    _sizes.forget(id);
    _items = items;
    _choices.save(items);
}

void SystemCleaner::calculateOnce()
{
    if (!_hasCalculated)
        recalculate();
}

void SystemCleaner::recalculate()
{
    if (!isWorking())
        calculate();
}

QCoro::Task<> SystemCleaner::calculate()
{
    const QPointer self(this);
    _hasCalculated = true;
    _work = Cancellation();
    const quint64 measuring = ++_measurings;
    _phase = CleanupPhase::calculating();
    _busyItems = _table.busyItems();
    co_await measure(idsOf(_items), _work);
    // A clean may have begun meanwhile, and another measuring after it.
    if (self && measuring == _measurings && _phase.value().kind == CleanupPhase::Kind::calculating)
        _phase = CleanupPhase();
}

QCoro::Task<> SystemCleaner::measure(QStringList ids, Cancellation work)
{
    const QPointer self(this);
    co_await _sizes.measure(ids, work);
    if (!self)
        co_return;
    // Left over by a cancelling.
    for (const QString &id : ids)
        if (!_sized.contains(id))
            change(id, [](CleanupItem &item) { item.estimatedSize = u"待计算"_s; });
}

void SystemCleaner::showSize(const QString &id, qint64 bytes)
{
    _sized.insert(id);
    change(id, [&](CleanupItem &item) {
        item.estimatedSize = bytes > 0 ? formatByteCount(bytes) : nothingToShow;
    });
}

bool SystemCleaner::isWorking() const
{
    return _isCleaning || _phase.value().kind == CleanupPhase::Kind::calculating;
}

void SystemCleaner::cancel()
{
    _work.cancel();
}

bool SystemCleaner::isSkipped(const CleanupItem &item) const
{
    return _busyItems.value().contains(item.id) && !_forcedItems.value().contains(item.id);
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

QStringList SystemCleaner::itemsToSkip(const QStringList &ids) const
{
    QStringList skipped;
    for (const CleanupItem &item : _items.value()) {
        if (isWanted(item, ids) && isSkipped(item))
            skipped.append(item.name);
    }
    return skipped;
}

QString SystemCleaner::obstacle(const QStringList &ids) const
{
    if (!itemsToClean(ids).isEmpty())
        return {};
    return itemsToSkip(ids).isEmpty() ? u"没有选择任何清理项"_s : u"所选项目的应用正在运行，没有清理"_s;
}

void SystemCleaner::clean(const QStringList &ids)
{
    if (_isCleaning)
        return;
    _work.cancel();
    _busyItems = _table.busyItems();
    CleanupReport report;
    report.skipped = itemsToSkip(ids);
    if (const QString reason = obstacle(ids); !reason.isEmpty()) {
        report.outcome = CleanupPhase::failed(reason);
        _report = report;
        _phase = report.outcome;
        return;
    }
    runClean(itemsToClean(ids), report);
}

QCoro::Task<> SystemCleaner::runClean(QList<CleanupItem> items, CleanupReport report)
{
    const QPointer self(this);
    _isCleaning = true;
    const Cancellation work;
    _work = work;
    const QStringList ids = idsOf(items);
    Cleaned total;
    for (qsizetype i = 0; i < items.size() && !work.isCancelled(); ++i) {
        _phase = CleanupPhase::cleaning(items[i].name);
        _progress = static_cast<double>(i) / static_cast<double>(items.size());
        // Taken away meanwhile, there is nothing to clean.
        if (const CleanupRule *const rule = _table.rule(ids[i])) {
            const CleanupBounds bounds = {_table.removalRules(*rule),
                                          _table.foldersOutside({ids.begin(), ids.end()}),
                                          _choices.excluded()};
            const Cleaned cleaned = co_await _itemCleaner.clean(*rule, bounds, work);
            if (!self)
                co_return;
            total.add(cleaned);
        }
        co_await Pause(_clock, afterEachItem);
        if (!self)
            co_return;
    }
    report.wasCancelled = work.isCancelled();
    report.removal = total.removal;
    report.outcome = CleanupPhase::done(total.count, total.ownBytes);
    _isCleaning = false;
    _report = report;
    _progress = 1.0;
    _phase = report.outcome;
    calculate();
    _details.lookAgain();
}

} // namespace velbrix
