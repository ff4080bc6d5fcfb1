#include "maintenance/cleanup/SystemCleaner.h"

#include "foundation/Paths.h"
#include "foundation/Text.h"

#include <QCoroFuture>
#include <QFile>
#include <QFileInfo>
#include <QPointer>
#include <QtConcurrent/QtConcurrentRun>

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

// Why it cannot be emptied, for the user; else empty. Blocking.
QString folderObstacle(const QString &folder, RemovalRules rules)
{
    const QFileInfo found(folder);
    if (!found.isDir())
        return u"请选择存在的文件夹"_s;
    if (found.isSymbolicLink())
        return u"这是一个链接，请选择它指向的文件夹：%1"_s.arg(canonicalPath(folder));
    rules.protectedPaths = protectedHostPaths();
    return RemovalRoot::obstacle(QFile::encodeName(folder), rules);
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
      _seen(settings, clock),
      _table(withFolders(std::move(catalog), _choices.customPaths()), {ports.trash, ports.programs}, _seen,
             std::move(ownPaths)),
      _sizes(_table, ports.usage),
      _details(
          _table, _choices,
          [this](const CleanupRule &rule, const QStringList &ids) {
              return bounds(rule, idsOf(itemsToClean(ids)) + QStringList{rule.item.id});
          },
          ports.usage, clock),
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
    connect(&_details, &CleanupDetails::contentsChanged, this, [this] {
        for (const CleanupContents &contents : _details.contents()) {
            for (const CleanupEntry &entry : contents.entries) {
                if (!entry.isIncluded && entry.bytes)
                    _sizes.learn(entry.path, *entry.bytes);
            }
        }
    });
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

bool SystemCleaner::isEmpty(const QString &id) const
{
    const CleanupRule *const known = _table.rule(id);
    return known && !known->measured.isEmpty() && _sizes.isKnown(id) && !_sizes.bytes(id);
}

QList<QByteArray> SystemCleaner::stayingPlaces(const QStringList &ids) const
{
    QList<QByteArray> places = _choices.excluded();
    for (const CleanupRule &rule : _table.rules()) {
        if (!ids.contains(rule.item.id))
            places += _sizes.folders(rule.item.id);
    }
    for (const CleanupUse::Folder &folder : _use.folders)
        places.append(QFile::encodeName(folder.path));
    return places;
}

qint64 SystemCleaner::selectedBytes() const
{
    QStringList ids = idsOf(itemsToClean());
    const QList<QByteArray> staying = stayingPlaces(ids);
    ids.removeIf([this](const QString &id) { return _table.rule(id)->takesPart; });
    return _sizes.going(ids, staying);
}

qint64 SystemCleaner::bytesToGo(const QString &id) const
{
    const CleanupRule *const known = _table.rule(id);
    return known && !known->takesPart
               ? _sizes.going({id}, stayingPlaces(idsOf(itemsToClean()) + QStringList{id}))
               : 0;
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
    if (liesInOpened(id))
        _details.lookAgain();
}

bool SystemCleaner::liesInOpened(const QString &id) const
{
    const QList<QByteArray> own = _sizes.folders(id);
    return std::ranges::any_of(_details.contents().keys(), [&](const QString &opened) {
        return std::ranges::any_of(_sizes.folders(opened), [&](const QByteArray &around) {
            return std::ranges::any_of(own,
                                       [&](const QByteArray &folder) { return isInside(folder, around); });
        });
    });
}

void SystemCleaner::setAllSelected(bool isSelected)
{
    QList<CleanupItem> items = _items;
    for (CleanupItem &item : items)
        item.isSelected = isSelected;
    _items = items;
    _choices.saveSelection(_items);
    _details.lookAgain();
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

QCoro::Task<Result<void>> SystemCleaner::addCustomPath(QString path)
{
    const QPointer self(this);
    const QString folder = standardizedPath(path);
    const CleanupRule custom = customRule(folder);
    const QString id = custom.item.id;
    const QFuture<QString> looking =
        QtConcurrent::run(&cleanupThreads(), folderObstacle, folder, _table.removalRules(custom, _use));
    const QString obstacle = co_await looking;
    if (!self)
        co_return Result<void>();
    if (!obstacle.isEmpty())
        co_return failure(obstacle);
    if (_table.rule(id))
        co_return failure(u"该路径已添加"_s);
    const auto count = std::ranges::count(_table.rules(), CleanupGroup::custom, &CleanupRule::group);
    if (count >= maxCustomPathsAllowed)
        co_return failure(u"最多可添加 %1 个自定义文件夹"_s.arg(maxCustomPathsAllowed));
    _table.add(custom);
    _items = _items.value() + QList<CleanupItem>{custom.item};
    _choices.save(_items);
    measure({id}, Cancellation());
    co_return Result<void>();
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
    const Cancellation work;
    _work = work;
    const quint64 measuring = ++_measurings;
    _phase = CleanupPhase::calculating();
    co_await lookForUse();
    if (!self)
        co_return;
    co_await measure(idsOf(_items), work);
    // A clean may have begun meanwhile, and another measuring after it.
    if (self && measuring == _measurings && _phase.value().kind == CleanupPhase::Kind::calculating)
        _phase = CleanupPhase();
}

QCoro::Task<> SystemCleaner::measure(QStringList ids, Cancellation work)
{
    const QPointer self(this);
    co_await _sizes.measure(ids, _choices.excluded(), work);
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

QCoro::Task<> SystemCleaner::lookForUse()
{
    const QPointer self(this);
    const CleanupUse use = co_await _table.use();
    if (!self)
        co_return;
    _use = use;
    _busyItems = use.items;
}

QCoro::Task<CleanupBounds> SystemCleaner::bounds(CleanupRule rule, QStringList ids) const
{
    const QPointer self(this);
    CleanupBounds bounds = co_await _table.bounds(rule, {ids.begin(), ids.end()}, _use);
    if (self)
        bounds.excluded = _choices.excluded();
    co_return bounds;
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

QStringList SystemCleaner::foldersToSkip(const QStringList &ids) const
{
    QStringList skipped;
    for (const CleanupItem &item : itemsToClean(ids)) {
        QStringList owners;
        for (const CleanupUse::Folder &folder : _use.folders) {
            if (folder.item == item.id)
                owners.append(folder.owner);
        }
        owners.sort();
        owners.removeDuplicates();
        if (!owners.isEmpty())
            skipped.append(u"%1（%2）"_s.arg(item.name, owners.join(u"、"_s)));
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
    _isCleaning = true;
    // Whoever shows it learns of it at once.
    if (const QList<CleanupItem> items = itemsToClean(ids); !items.isEmpty())
        _phase = CleanupPhase::cleaning(items.first().name);
    runClean(ids);
}

QCoro::Task<> SystemCleaner::runClean(QStringList wanted)
{
    const QPointer self(this);
    const Cancellation work;
    _work = work;
    co_await lookForUse();
    if (!self)
        co_return;
    CleanupReport report;
    report.skipped = itemsToSkip(wanted);
    if (const QString reason = obstacle(wanted); !reason.isEmpty()) {
        _isCleaning = false;
        report.outcome = CleanupPhase::failed(reason);
        _report = report;
        _phase = CleanupPhase(); // so that it is news also when it fails as before
        _phase = report.outcome;
        co_return;
    }
    co_await cleanItems(itemsToClean(wanted), report, work);
}

QCoro::Task<> SystemCleaner::cleanItems(QList<CleanupItem> items, CleanupReport report, Cancellation work)
{
    const QPointer self(this);
    const QStringList ids = idsOf(items);
    report.skipped += foldersToSkip(ids);
    Cleaned total;
    for (qsizetype i = 0; i < items.size() && !work.isCancelled(); ++i) {
        const QString &name = items[i].name;
        _phase = CleanupPhase::cleaning(name);
        _progress = static_cast<double>(i) / static_cast<double>(items.size());
        co_await lookForUse(); // a program may have been started meanwhile
        if (!self)
            co_return;
        if (isSkipped(items[i])) {
            report.skipped.append(name);
            continue;
        }
        const Cleaned cleaned = co_await cleanItem(items[i], ids, work);
        if (!self)
            co_return;
        total.add(cleaned);
        if (!cleaned.failure.isEmpty())
            report.failed.append({name, cleaned.failure});
        else if (!cleaned.isMeasured)
            report.unmeasured.append(name);
        co_await Pause(_clock, afterEachItem);
        if (!self)
            co_return;
    }
    report.wasCancelled = work.isCancelled();
    report.removal = total.removal;
    report.kept = total.kept;
    report.outcome = CleanupPhase::done(total.count, total.ownBytes);
    _isCleaning = false;
    _report = report;
    _progress = 1.0;
    _phase = report.outcome;
    calculate();
    _details.lookAgain();
}

QCoro::Task<Cleaned> SystemCleaner::cleanItem(CleanupItem item, QStringList ids, Cancellation work)
{
    const QPointer self(this);
    const CleanupRule *const known = _table.rule(item.id);
    if (!known) // taken away meanwhile, there is nothing to clean
        co_return Cleaned();
    const CleanupRule rule = *known;
    const CleanupBounds within = co_await bounds(rule, ids);
    if (!self)
        co_return Cleaned();
    const Cleaned cleaned = co_await _itemCleaner.clean(rule, within, work);
    co_return cleaned;
}

} // namespace velbrix
