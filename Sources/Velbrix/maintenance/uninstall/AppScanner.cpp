#include "maintenance/uninstall/AppScanner.h"

#include "foundation/SettingsStore.h"
#include "maintenance/uninstall/AppListing.h"
#include "maintenance/uninstall/ReviewListing.h"
#include "maintenance/uninstall/UninstallJournal.h"
#include "maintenance/uninstall/UninstallSequence.h"
#include "platform/TrashCan.h"

#include <QFileInfo>
#include <QLocale>
#include <QPointer>

#include <algorithm>
#include <ranges>

using namespace Qt::StringLiterals;
using namespace std::chrono_literals;

namespace velbrix {
namespace {

constexpr auto udModeKey = "Velbrix_UninstallMode"_L1;
constexpr auto udOptionsKey = "Velbrix_CleanupOptions"_L1;
constexpr auto sizesShownEvery = 100ms;

QString doneMessage(const QString &name, qsizetype failures)
{
    const QString done = u"已卸载「%1」"_s.arg(name);
    return failures == 0 ? done : done + u"，%1 项未能移动"_s.arg(failures);
}

QString putBackMessage(const UninstallRecord &record, qsizetype failures)
{
    QStringList parts;
    if (const qsizetype restored = record.moved.size() - failures; restored > 0)
        parts << u"已将「%1」的 %2 项放回原处"_s.arg(record.name, QString::number(restored));
    if (failures > 0)
        parts << u"%1 项未能放回"_s.arg(failures);
    if (!record.removedPackage.isEmpty())
        parts << u"软件包 %1 不能放回，请重新安装"_s.arg(record.removedPackage);
    return parts.join(u"，"_s);
}

} // namespace

AppScanner::AppScanner(Hosts hosts, SettingsStore &settings, Clock &clock, const QString &journalFile,
                       QObject *parent)
    : QObject(parent),
      _hosts(hosts),
      _settings(settings),
      _clock(clock),
      _ownFolder(QFileInfo(journalFile).absolutePath()),
      _journal(std::make_unique<UninstallJournal>(journalFile)),
      _sequence(new UninstallSequence(hosts.catalog, hosts.trash, *_journal, clock, this))
{
    const QString mode = settings.string(udModeKey).value_or(QString());
    _uninstallMode = uninstallModeFromRawValue(mode).value_or(UninstallMode::full);
    const QJsonObject options = settings.json(udOptionsKey).value_or(QJsonValue()).toObject();
    _cleanupOptions = cleanupOptionsFromJson(options).value_or(CleanupOptions());
    _records = _journal->records();
    observeSequence();
}

AppScanner::~AppScanner()
{
    _scanning.cancel();
    _reviewing.cancel();
    _uninstalling.cancel();
    delete _sequence; // before the journal it writes to
}

void AppScanner::observeSequence()
{
    connect(_sequence, &UninstallSequence::begun, this, [this] { _isUninstalling = true; });
    connect(_sequence, &UninstallSequence::stageReached, this, [this](const UninstallStage &stage) {
        _progressStage = stage;
        _progressValue = stage.progress();
    });
    connect(_sequence, &UninstallSequence::progressed, this,
            [this](double value) { _progressValue = value; });
    connect(_sequence, &UninstallSequence::failed, this,
            [this](const FailedItem &item) { _failures = failures() << item; });
    connect(_sequence, &UninstallSequence::recorded, this, [this] { _records = _journal->records(); });
}

void AppScanner::scanOnce()
{
    if (!_hasScanned)
        scan();
}

void AppScanner::scan()
{
    _hasScanned = true;
    _scanning.cancel();
    _scanning = Cancellation();
    _isScanning = true;
    runScan(_scanning);
}

QCoro::Task<> AppScanner::runScan(Cancellation scan)
{
    const Result<QList<InstalledApplication>> found = co_await _hosts.catalog.applications();
    if (scan.isCancelled())
        co_return;
    const QList<InstalledApplication> all = found.value_or(QList<InstalledApplication>());
    QList<AppInfo> apps = co_await listedApps(all, _hosts.catalog.ownIdentity(), _hosts.usage, scan);
    if (scan.isCancelled())
        co_return;
    for (AppInfo &app : apps)
        app.id = _nextId++;
    _scanProblem = found ? QString() : found.error().message;
    _apps = apps;
    _isScanning = false;
}

QList<AppInfo> AppScanner::filteredApps() const
{
    if (searchText().isEmpty())
        return apps();
    const QLocale locale;
    const QString wanted = locale.toLower(searchText());
    QList<AppInfo> matching = apps();
    matching.removeIf([&](const AppInfo &app) { return !locale.toLower(app.name).contains(wanted); });
    return matching;
}

void AppScanner::setSearchText(const QString &text)
{
    _searchText = text;
}

void AppScanner::setUninstallMode(UninstallMode mode)
{
    _uninstallMode = mode;
    _settings.set(udModeKey, rawValue(mode));
}

void AppScanner::setCleanupOptions(const CleanupOptions &options)
{
    _cleanupOptions = options;
    _settings.set(udOptionsKey, toJson(options));
}

QList<LibraryKind> AppScanner::libraryKinds() const
{
    QList<LibraryKind> kinds;
    for (const LibraryFolder &folder : _hosts.catalog.libraryFolders()) {
        if (!kinds.contains(folder.kind))
            kinds.append(folder.kind);
    }
    return kinds;
}

UninstallPlan AppScanner::planFor(const AppInfo &app, UninstallMode mode) const
{
    UninstallPlan plan;
    plan.review = {app, mode, false, {}, {}};
    plan.search.subject = {app.name, app.bundleID, {}, _hosts.catalog.ownIdentity()};
    for (const AppInfo &other : apps()) {
        if (other.path != app.path && !other.bundleID.isEmpty())
            plan.search.subject.others.append(other.bundleID);
    }
    plan.search.protectedPlaces = {_ownFolder, _hosts.catalog.ownIdentity().path};
    plan.search.protectedPlaces += _hosts.trash.folders();
    const CleanupOptions options = cleanupOptions();
    for (const LibraryFolder &folder : _hosts.catalog.libraryFolders()) {
        plan.search.protectedPlaces.append(folder.path);
        if (mode == UninstallMode::full || (mode == UninstallMode::custom && flag(options, folder.kind)))
            plan.search.folders.append(folder);
    }
    return plan;
}

void AppScanner::prepareReview(const AppInfo &app)
{
    if (_isBusy)
        return;
    cancelReview();
    _isReviewing = true;
    runReview(app, _reviewing);
}

QCoro::Task<> AppScanner::runReview(AppInfo app, Cancellation reviewing)
{
    const UninstallPlan plan = planFor(app, uninstallMode());
    const UninstallReview review = co_await listedReview(plan, _hosts.catalog, _hosts.programs);
    if (reviewing.isCancelled())
        co_return;
    _review = review;
    _isReviewing = false;
    const auto measured = [this](qsizetype item, qint64 bytes) {
        _sizes.insert(item, bytes);
        if (!_sizesDue)
            _sizesDue = _clock.after(sizesShownEvery, [this] { showSizes(); });
    };
    co_await measureReview(review, _hosts.usage, measured, reviewing);
    if (!reviewing.isCancelled())
        showSizes();
}

// Together: a publication for each of thousands would stand still.
void AppScanner::showSizes()
{
    _sizesDue.reset();
    std::optional<UninstallReview> now = review();
    if (!now)
        return;
    for (const auto &[item, bytes] : std::as_const(_sizes).asKeyValueRange())
        now->items[item].bytes = bytes;
    _sizes.clear();
    _review = now;
}

QCoro::Task<UninstallReview> AppScanner::reviewOf(AppInfo app, UninstallMode mode)
{
    const QPointer self(this);
    const UninstallPlan plan = planFor(app, mode);
    UninstallReview review = co_await listedReview(plan, _hosts.catalog, _hosts.programs);
    if (!self)
        co_return review;
    const auto sizes = std::make_shared<QHash<qsizetype, qint64>>();
    const auto measured = [sizes](qsizetype item, qint64 bytes) { sizes->insert(item, bytes); };
    const Cancellation never;
    co_await measureReview(review, _hosts.usage, measured, never);
    for (const auto &[item, bytes] : std::as_const(*sizes).asKeyValueRange())
        review.items[item].bytes = bytes;
    co_return review;
}

void AppScanner::setTicked(const QString &path, bool isTicked)
{
    std::optional<UninstallReview> now = review();
    if (!now)
        return;
    for (ReviewItem &item : now->items) {
        if (item.path == path && !item.isFixed)
            item.isTicked = isTicked;
    }
    _review = now;
}

void AppScanner::cancelReview()
{
    _reviewing.cancel();
    _reviewing = Cancellation();
    _sizesDue.reset();
    _sizes.clear();
    _isReviewing = false;
    _review = std::nullopt;
}

void AppScanner::uninstall(const UninstallReview &review)
{
    if (_isBusy || isPuttingBack())
        return;
    const UninstallReview chosen = review; // it may be the one that closes here
    cancelReview();
    _isBusy = true;
    _uninstalling = Cancellation();
    _failures = QList<FailedItem>();
    _uninstallingName = chosen.app.name;
    runUninstall(chosen);
}

QCoro::Task<> AppScanner::runUninstall(UninstallReview review)
{
    const QPointer self(this);
    UninstallPlan plan = planFor(review.app, review.mode);
    plan.review = review;
    const UninstallSequence::Outcome outcome = co_await _sequence->run(plan, _uninstalling);
    if (!self)
        co_return;
    const bool isDone = outcome.stage.kind == UninstallStage::Kind::done;
    if (isDone)
        co_await Pause(_clock, 1500ms);
    if (!self)
        co_return;
    const QString message = isDone ? doneMessage(review.app.name, failures().size()) : outcome.stage.label();
    if (isDone)
        closeOverlay();
    _isUninstalling = false;
    _uninstallingName = QString();
    _isBusy = false;
    // A failure may mean that the list is not true any more.
    if (outcome.hasRemoved || !isDone)
        scan();
    Q_EMIT finished(message);
}

void AppScanner::closeOverlay()
{
    _progressStage = UninstallStage();
    _progressValue = 0;
}

void AppScanner::cancelUninstall()
{
    _uninstalling.cancel();
}

void AppScanner::putBack(const QString &recordId)
{
    const auto record = std::ranges::find(_journal->records(), recordId, &UninstallRecord::id);
    if (_isBusy || isPuttingBack() || record == _journal->records().end())
        return;
    _isPuttingBack = true;
    _failures = QList<FailedItem>();
    runPutBack(*record);
}

void AppScanner::forget(const QString &recordId)
{
    if (_isBusy || isPuttingBack())
        return;
    _journal->remove(recordId);
    _records = _journal->records();
}

QCoro::Task<> AppScanner::runPutBack(UninstallRecord record)
{
    const QPointer self(this);
    UninstallRecord rest = record;
    for (const MovedItem &item : record.moved | std::views::reverse) {
        Result<void> restored = failure(u"不知道它在废纸篓中的位置"_s);
        if (!item.trashed.isEmpty())
            restored = co_await _hosts.trash.putBack(item.trashed, item.original);
        if (!self)
            co_return;
        if (!restored) {
            _failures = failures() << FailedItem{item.original, restored.error().message};
            continue;
        }
        rest.moved.removeOne(item);
        (void)co_await _journal->put(rest);
        if (!self)
            co_return;
        _records = _journal->records();
    }
    if (rest.moved.isEmpty() && !record.moved.isEmpty())
        (void)co_await _journal->remove(record.id);
    if (!self)
        co_return;
    _records = _journal->records();
    _isPuttingBack = false;
    const QString message = putBackMessage(record, failures().size());
    scan();
    Q_EMIT finished(message);
}

} // namespace velbrix
