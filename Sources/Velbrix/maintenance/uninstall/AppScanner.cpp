#include "maintenance/uninstall/AppScanner.h"

#include "foundation/SettingsStore.h"
#include "maintenance/uninstall/AppListing.h"
#include "platform/TrashCan.h"

#include <QFileInfo>
#include <QLocale>
#include <QPointer>

#include <algorithm>

using namespace Qt::StringLiterals;
using namespace std::chrono_literals;

namespace velbrix {
namespace {

constexpr auto udModeKey = "Velbrix_UninstallMode"_L1;
constexpr auto udOptionsKey = "Velbrix_CleanupOptions"_L1;
constexpr auto endShown = 1500ms; // the last stage, before the page returns to the list

QString doneMessage(const QString &name, qsizetype failures)
{
    const QString done = u"已卸载「%1」"_s.arg(name);
    return failures == 0 ? done : done + u"，%1 项未能移动"_s.arg(failures);
}

// As launchers of one package.
bool goTogether(const InstalledApplication &one, const InstalledApplication &other)
{
    return !one.package.isEmpty() && one.manager == other.manager && one.package == other.package;
}

} // namespace

AppScanner::AppScanner(Ports ports, SettingsStore &settings, Clock &clock, const QString &journalFile,
                       QObject *parent)
    : QObject(parent),
      _ports(ports),
      _settings(settings),
      _clock(clock),
      _ownFolder(QFileInfo(journalFile).absolutePath()),
      _openReview({ports.catalog, ports.usage, ports.programs}, clock),
      _journal(journalFile),
      _trash(ports.trash, _journal, clock),
      _sequence(ports.catalog, ports.programs, _trash, clock)
{
    const QString mode = settings.string(udModeKey).value_or(QString());
    _uninstallMode = uninstallModeFromRawValue(mode).value_or(UninstallMode::full);
    const QJsonObject options = settings.json(udOptionsKey).value_or(QJsonValue()).toObject();
    _cleanupOptions = cleanupOptionsFromJson(options).value_or(CleanupOptions());
    observeSequence();
    readRecords();
    _job.follow(*this, &AppScanner::uninstallingNameChanged, &AppScanner::isUninstallingChanged,
                &AppScanner::progressValueChanged, &AppScanner::isPuttingBackChanged, &AppScanner::finished);
}

QCoro::Task<> AppScanner::readRecords()
{
    const QPointer self(this);
    co_await _journal.loaded();
    if (!self)
        co_return;
    _records = _journal.records();
    _recordsProblem = _journal.problem();
}

AppScanner::~AppScanner()
{
    _scanning.cancel();
    _uninstalling.cancel();
}

void AppScanner::observeSequence()
{
    connect(&_trash, &RecordedTrash::failed, this,
            [this](const FailedItem &item) { _failures = failures() << item; });
    connect(&_trash, &RecordedTrash::recorded, this, [this] { _records = _journal.records(); });
    connect(&_sequence, &UninstallSequence::begun, this, [this] { _isUninstalling = true; });
    connect(&_sequence, &UninstallSequence::progressed, this,
            [this](double value) { _progressValue = value; });
    connect(&_sequence, &UninstallSequence::stageReached, this, [this](const UninstallStage &stage) {
        _progressStage = stage;
        _progressValue = stage.progress();
    });
}

Job::State AppScanner::jobState() const
{
    Job::State state{.isBusy = _isBusy || isPuttingBack()};
    // A package manager is never left alone in mid-work.
    state.mustFinish = _isBusy;
    if (isUninstalling()) {
        state.what = u"正在卸载"_s;
        state.progress = progressValue();
    } else if (isPuttingBack()) {
        state.what = u"正在放回原处"_s;
    }
    return state;
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
    const Result<QList<InstalledApplication>> found = co_await _ports.catalog.applications();
    if (scan.isCancelled())
        co_return;
    const QList<InstalledApplication> all = found.value_or(QList<InstalledApplication>());
    QList<AppInfo> apps = co_await listedApps(all, _ports.catalog.ownIdentity(), _ports.usage, scan);
    if (scan.isCancelled())
        co_return;
    for (AppInfo &app : apps)
        app.id = _nextId++;
    _unlisted = all;
    _unlisted.removeIf([](const InstalledApplication &each) { return each.isListed; });
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
    for (const LibraryFolder &folder : _ports.catalog.libraryFolders()) {
        if (!kinds.contains(folder.kind))
            kinds.append(folder.kind);
    }
    return kinds;
}

UninstallPlan AppScanner::planFor(const AppInfo &app, UninstallMode mode) const
{
    UninstallPlan plan;
    plan.review = {app, mode, false, {}, {}};
    plan.search.subject = {app.name, app.bundleID, {}, _ports.catalog.ownIdentity()};
    const auto addOther = [&](const InstalledApplication &other) {
        if (other.path != app.path && !goTogether(other, app.source))
            plan.search.subject.others.append(other.identifier);
    };
    for (const AppInfo &other : apps())
        addOther(other.source);
    std::ranges::for_each(_unlisted, addOther);
    plan.search.protectedPaths = {_ownFolder, _ports.catalog.ownIdentity().path};
    plan.search.protectedPaths += _ports.trash.folders();
    const CleanupOptions options = cleanupOptions();
    for (const LibraryFolder &folder : _ports.catalog.libraryFolders()) {
        plan.search.protectedPaths.append(folder.path);
        if (mode == UninstallMode::full || (mode == UninstallMode::custom && flag(options, folder.kind)))
            plan.search.folders.append(folder);
    }
    return plan;
}

void AppScanner::prepareReview(const AppInfo &app)
{
    if (!_isBusy)
        _openReview.prepare(planFor(app, uninstallMode()));
}

QCoro::Task<UninstallReview> AppScanner::reviewOf(AppInfo app, UninstallMode mode)
{
    const QPointer self(this);
    const UninstallPlan plan = planFor(app, mode);
    UninstallReview review = co_await listedReview(plan, _ports.catalog, _ports.programs);
    if (!self)
        co_return review;
    const auto measured = [&review](qsizetype item, qint64 bytes) { review.items[item].bytes = bytes; };
    const Cancellation never;
    co_await measureReview(review, _ports.usage, measured, never);
    co_return review;
}

void AppScanner::uninstall(UninstallReview review)
{
    if (_isBusy || isPuttingBack())
        return;
    _openReview.close();
    _isBusy = true;
    _uninstalling = Cancellation();
    _failures = QList<FailedItem>();
    _uninstallingName = review.app.name;
    runUninstall(std::move(review));
}

QCoro::Task<> AppScanner::runUninstall(UninstallReview review)
{
    const QPointer self(this);
    UninstallPlan plan = planFor(review.app, review.mode);
    plan.review = review;
    const UninstallSequence::Outcome outcome = co_await _sequence.run(plan, _uninstalling);
    if (!self)
        co_return;
    const bool isDone = outcome.stage.kind == UninstallStage::Kind::done;
    if (isDone)
        co_await Pause(_clock, endShown);
    if (!self)
        co_return;
    const QString message = isDone ? doneMessage(review.app.name, failures().size()) : outcome.stage.label();
    if (isDone) {
        _progressStage = UninstallStage();
        _progressValue = 0;
    }
    _isUninstalling = false;
    _uninstallingName = QString();
    _isBusy = false;
    // A failure may mean that the list is not true any more.
    if (outcome.hasRemoved || !isDone)
        scan();
    Q_EMIT finished(message);
}

void AppScanner::cancelUninstall()
{
    _uninstalling.cancel();
}

void AppScanner::putBack(const QString &recordId)
{
    const auto record = std::ranges::find(_journal.records(), recordId, &UninstallRecord::id);
    if (_isBusy || isPuttingBack() || record == _journal.records().end())
        return;
    _isPuttingBack = true;
    _failures = QList<FailedItem>();
    runPutBack(*record);
}

void AppScanner::forget(const QString &recordId)
{
    if (_isBusy || isPuttingBack())
        return;
    const auto record = std::ranges::find(_journal.records(), recordId, &UninstallRecord::id);
    if (record == _journal.records().end())
        return;
    const QString name = record->name;
    _journal.remove(recordId).then([self = QPointer(this), name](const Result<void> &removed) {
        // What has begun meanwhile writes all records, and tells when it cannot.
        if (removed || !self)
            return;
        self->_records = self->_journal.records();
        if (self->_isBusy || self->isPuttingBack())
            return;
        self->_failures = QList<FailedItem>{{name, removed.error().message}};
        Q_EMIT self->finished(u"卸载记录未能移除"_s);
    });
    _records = _journal.records();
}

QCoro::Task<> AppScanner::runPutBack(UninstallRecord record)
{
    const QPointer self(this);
    const QString message = co_await _trash.putBack(record);
    if (!self)
        co_return;
    _isPuttingBack = false;
    scan();
    Q_EMIT finished(message);
}

} // namespace velbrix
