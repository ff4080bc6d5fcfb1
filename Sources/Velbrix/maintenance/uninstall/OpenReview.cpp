#include "maintenance/uninstall/OpenReview.h"

#include "maintenance/uninstall/AppListing.h"
#include "platform/DiskUsage.h"

#include <QCoroFuture>
#include <QFile>
#include <QtConcurrent/QtConcurrentRun>

#include <algorithm>

using namespace Qt::StringLiterals;
using namespace std::chrono_literals;

namespace velbrix {
namespace {

constexpr auto sizesShownEvery = 100ms; // thousands come at once
constexpr auto runningAskedEvery = 2s;

bool isManaged(const AppInfo &app)
{
    return app.source.kind == InstalledApplication::Kind::managed;
}

ReviewItem applicationItem(const AppInfo &app)
{
    ReviewItem item;
    item.path = app.path;
    item.reason = MatchReason::application;
    item.why = isManaged(app) ? u"应用本体，由 %1 移除（%2）"_s.arg(app.source.manager, app.source.package)
                              : u"应用本体"_s;
    QStringList lost = app.source.systemDataRemoved;
    lost.removeIf([](const QString &path) { return !isThere(path); });
    if (!lost.isEmpty())
        item.caution = u"%1 会一并删除系统中的数据：%2"_s.arg(app.source.manager, lost.join(u"、"_s));
    item.isTicked = true;
    item.isFixed = true;
    if (isManaged(app) || app.size > 0)
        item.bytes = app.size;
    return item;
}

// In their own order, without those that are not there.
QList<ReviewItem> companionItems(const QList<ApplicationCompanion> &companions, const QStringList &places)
{
    const ProtectedPaths stay(places);
    QList<ReviewItem> items;
    for (const ApplicationCompanion &companion : companions) {
        if (!companion.path.startsWith(u'/') || stay.hold(companion.path) || !isThere(companion.path))
            continue;
        ReviewItem item;
        item.path = companion.path;
        item.reason = MatchReason::companion;
        item.why = u"随应用一起的文件"_s;
        item.caution = companion.isCertain ? QString() : u"其他程序也可能用到它"_s;
        item.isTicked = companion.isCertain;
        items.append(item);
    }
    return items;
}

// Says of the data that the manager would delete what becomes of it; such data
// is listed in every mode.
void addRemovedData(const AppInfo &app, QList<ReviewItem> &items)
{
    const QString fate = u"%1 会删除它，因此先移到废纸篓；不勾选则在移除后放回"_s.arg(app.source.manager);
    for (const QString &path : app.source.userDataRemoved) {
        if (const auto found = std::ranges::find(items, path, &ReviewItem::path); found != items.end()) {
            found->why = fate;
        } else if (isThere(path)) {
            ReviewItem item;
            item.path = path;
            item.reason = MatchReason::companion;
            item.why = fate;
            item.caution = u"不在这次要清理的数据里"_s;
            items.append(item);
        }
    }
}

QList<ReviewItem> itemsOf(const UninstallPlan &plan)
{
    const AppInfo &app = plan.review.app;
    QList<ReviewItem> items = companionItems(app.source.companions, plan.search.protectedPaths);
    QSet<QString> listed = {app.path};
    for (const ApplicationCompanion &companion : app.source.companions)
        listed.insert(companion.path);
    for (const ReviewItem &item : findData(plan.search)) {
        if (!listed.contains(item.path))
            items.append(item);
    }
    addRemovedData(app, items);
    items.prepend(applicationItem(app));
    return items;
}

} // namespace

QCoro::Task<UninstallReview> listedReview(UninstallPlan plan, ApplicationCatalog &catalog,
                                          RunningPrograms &programs)
{
    UninstallReview review = plan.review;
    const QCoro::Task<bool> running = isRunning(review.app, programs);
    review.packages.clear();
    QString problem;
    if (isManaged(review.app)) {
        const Result<QStringList> packages = co_await catalog.packagesRemovedWith(review.app.source);
        review.packages = packages.value_or(QStringList());
        problem = packages ? QString() : packages.error().message;
    }
    const QFuture<QList<ReviewItem>> asked = QtConcurrent::run(&uninstallWorkers(), itemsOf, plan);
    review.items = co_await asked;
    review.isRunning = co_await running;
    if (!problem.isEmpty())
        review.items.first().caution = u"无法得知会一并移除的软件包："_s + problem;
    co_return review;
}

QCoro::Task<> measureReview(UninstallReview review, DiskUsage &usage,
                            std::function<void(qsizetype item, qint64 bytes)> measured,
                            Cancellation cancellation)
{
    QList<QByteArray> paths;
    QList<qsizetype> items;
    for (qsizetype index = 0; index < review.items.size(); ++index) {
        if (review.items.at(index).bytes)
            continue;
        items.append(index);
        paths.append(QFile::encodeName(review.items.at(index).path));
    }
    const DiskUsage::Measured tell = [items, measured](qsizetype index, qint64 bytes) {
        measured(items.at(index), bytes);
    };
    co_await usage.measure(paths, tell, cancellation);
}

void OpenReview::prepare(const UninstallPlan &plan)
{
    close();
    _isPreparing = true;
    run(plan, _wanted);
}

QCoro::Task<> OpenReview::run(UninstallPlan plan, Cancellation wanted)
{
    const UninstallReview review = co_await listedReview(plan, _ports.catalog, _ports.programs);
    if (wanted.isCancelled())
        co_return;
    _review = review;
    _isPreparing = false;
    _runningDue = _clock.after(runningAskedEvery, [this] { askRunning(_wanted); });
    const auto measured = [this](qsizetype item, qint64 bytes) {
        _sizes.insert(item, bytes);
        if (!_sizesDue)
            _sizesDue = _clock.after(sizesShownEvery, [this] { showSizes(); });
    };
    co_await measureReview(review, _ports.usage, measured, wanted);
    if (!wanted.isCancelled())
        showSizes();
}

// Together: a publication for each of thousands would stand still.
void OpenReview::showSizes()
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

// The user may end it while the review lies open, or start it.
QCoro::Task<> OpenReview::askRunning(Cancellation wanted)
{
    if (!review())
        co_return;
    const bool isOpen = co_await isRunning(review()->app, _ports.programs);
    if (wanted.isCancelled())
        co_return;
    std::optional<UninstallReview> now = review();
    now->isRunning = isOpen;
    _review = now;
    _runningDue = _clock.after(runningAskedEvery, [this] { askRunning(_wanted); });
}

void OpenReview::setTicked(const QString &path, bool isTicked)
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

void OpenReview::close()
{
    _wanted.cancel();
    _wanted = Cancellation();
    _sizesDue.reset();
    _runningDue.reset();
    _sizes.clear();
    _isPreparing = false;
    _review = std::nullopt;
}

} // namespace velbrix
