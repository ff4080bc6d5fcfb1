#include "maintenance/uninstall/UninstallSequence.h"

#include "foundation/Log.h"
#include "maintenance/uninstall/AppListing.h"
#include "maintenance/uninstall/RecordedTrash.h"

#include <QCoroFuture>
#include <QPointer>
#include <QtConcurrent/QtConcurrentRun>

#include <algorithm>

using namespace Qt::StringLiterals;
using namespace std::chrono_literals;

namespace velbrix {
namespace {

using Kind = UninstallStage::Kind;

// Every stage stays on the page long enough to be read, every entry long enough
// to be seen going.
constexpr auto preparingPause = 300ms;
constexpr auto movingPause = 200ms;
constexpr auto scanningPause = 150ms;
constexpr auto betweenEntries = 50ms;
constexpr auto finishingPause = 400ms;

// Of the progress: what the data of a folder adds, and where finishing begins.
constexpr double dataShare = 0.65;
constexpr double mostBeforeFinishing = 0.9;

struct Standing {
    bool isSelf = false;
    bool isThere = false;
    bool isProtected = false;
};

Standing standing(const AppInfo &app, const OwnIdentity &own, const QStringList &places)
{
    InstalledApplication application;
    application.path = app.path;
    application.name = app.name;
    application.identifier = app.bundleID;
    return {isSelf(selfTraits(application), selfTraits(own)), isThere(app.path),
            !app.path.startsWith(u'/') || ProtectedPaths(places).hold(app.path)};
}

// Those companions that may go.
QStringList allowedCompanions(const QList<ApplicationCompanion> &companions, const QStringList &places)
{
    const ProtectedPaths stay(places);
    QStringList allowed;
    for (const ApplicationCompanion &companion : companions) {
        if (companion.path.startsWith(u'/') && !stay.hold(companion.path))
            allowed.append(companion.path);
    }
    return allowed;
}

// What is there of the data that a manager would delete; a failure when some of
// it must stay where it is.
Result<QStringList> movableData(const QStringList &data, const QStringList &places)
{
    const ProtectedPaths stay(places);
    QStringList there;
    std::ranges::copy_if(data, std::back_inserter(there), isThere);
    for (const QString &path : std::as_const(there)) {
        if (stay.hold(path))
            return failure(u"软件包管理器会删除受保护的位置，不能卸载：%1"_s.arg(path));
    }
    return there;
}

QStringList stillThere(const QSet<QString> &paths)
{
    QStringList there;
    std::ranges::copy_if(paths, std::back_inserter(there), isThere);
    there.sort();
    return there;
}

} // namespace

void UninstallSequence::prepare(UninstallPlan plan, Cancellation cancellation)
{
    _plan = std::move(plan);
    _cancellation = std::move(cancellation);
    _trash.begin(_plan.review.app);
    _hasRemoved = false;
    _open.clear();
    for (const ReviewItem &item : std::as_const(_plan.review.items)) {
        if (item.isTicked && item.reason != MatchReason::application)
            _open.insert(item.path);
    }
}

QCoro::Task<UninstallSequence::Outcome> UninstallSequence::run(UninstallPlan plan, Cancellation cancellation)
{
    const QPointer self(this);
    prepare(std::move(plan), std::move(cancellation));
    const QString hindrance = co_await obstacle();
    if (!self)
        co_return Outcome{};
    if (!hindrance.isEmpty())
        co_return ended(Kind::failed, hindrance);
    Q_EMIT begun();
    Q_EMIT stageReached({Kind::preparing, {}});
    co_await Pause(_clock, preparingPause);
    if (!self)
        co_return Outcome{};
    Q_EMIT stageReached({Kind::movingApp, {}});
    co_await Pause(_clock, movingPause);
    if (!self)
        co_return Outcome{};
    const QString running = co_await runningObstacle();
    if (!self)
        co_return Outcome{};
    if (_cancellation.isCancelled())
        co_return ended(Kind::failed, u"已取消"_s);
    if (!running.isEmpty())
        co_return ended(Kind::failed, running);
    const Result<void> taken = co_await takeApplication();
    if (!self)
        co_return Outcome{};
    if (!taken)
        co_return ended(Kind::failed, taken.error().message);
    _hasRemoved = true;
    const Outcome outcome = co_await takeTheRest();
    co_return outcome;
}

QCoro::Task<UninstallSequence::Outcome> UninstallSequence::takeTheRest()
{
    const QPointer self(this);
    co_await takeCompanions();
    if (!self)
        co_return Outcome{};
    co_await takeData();
    if (!self)
        co_return Outcome{};
    if (_cancellation.isCancelled())
        co_return ended(Kind::failed, u"已取消，其余项目未移动"_s);
    co_await refuseTheRest();
    if (!self)
        co_return Outcome{};
    Q_EMIT stageReached({Kind::finishing, {}});
    co_await Pause(_clock, finishingPause);
    if (!self)
        co_return Outcome{};
    co_return ended(Kind::done);
}

UninstallSequence::Outcome UninstallSequence::ended(Kind kind, const QString &text)
{
    const UninstallStage stage = {kind, text};
    Q_EMIT stageReached(stage);
    return {stage, _hasRemoved};
}

QCoro::Task<QString> UninstallSequence::obstacle()
{
    const QPointer self(this);
    const QString path = _plan.review.app.path;
    const OwnIdentity own = _catalog.ownIdentity();
    const QFuture<Standing> asked =
        QtConcurrent::run(&uninstallWorkers(), standing, _plan.review.app, own, _plan.search.protectedPaths);
    const Standing found = co_await asked;
    if (found.isSelf) {
        log::line(u"Uninstall"_s, u"blocked self uninstall: "_s + path);
        co_return u"不能卸载 Velbrix 自身"_s;
    }
    if (!found.isThere)
        co_return u"找不到应用"_s;
    if (found.isProtected)
        co_return u"受保护的位置，不能卸载：%1"_s.arg(path);
    if (!self)
        co_return QString();
    co_return co_await runningObstacle();
}

// It would write its files anew.
QCoro::Task<QString> UninstallSequence::runningObstacle() const
{
    const bool isOpen = co_await isRunning(_plan.review.app, _programs);
    co_return isOpen ? u"应用正在运行，请先退出"_s : QString();
}

QCoro::Task<Result<void>> UninstallSequence::takeApplication()
{
    const QPointer self(this);
    const QString path = _plan.review.app.path;
    if (_plan.review.app.source.kind == InstalledApplication::Kind::managed) {
        const Result<void> removed = co_await removePackage();
        co_return removed;
    }
    const Result<void> moved = co_await _trash.move(path);
    if (!self || !moved)
        co_return moved;
    // Whoever was asked to move it may have failed without a word.
    const QFuture<bool> asked = QtConcurrent::run(&uninstallWorkers(), isThere, path);
    const bool isStillThere = co_await asked;
    if (self && isStillThere)
        co_return failure(u"无法将应用移入废纸篓"_s);
    co_return Result<void>();
}

QCoro::Task<Result<void>> UninstallSequence::removePackage()
{
    const QPointer self(this);
    const InstalledApplication source = _plan.review.app.source;
    const QStringList agreed = _plan.review.packages;
    const Result<QStringList> aside = co_await setDataAside();
    if (!self || !aside)
        co_return aside ? Result<void>() : std::unexpected(aside.error());
    const Result<void> removed = co_await _catalog.removeManaged(source, agreed, _cancellation);
    if (!self)
        co_return removed;
    QStringList wanted = *aside;
    if (removed) {
        co_await _trash.removed(source.package.isEmpty() ? source.name : source.package);
        if (!self)
            co_return removed;
        wanted.removeIf([this](const QString &path) { return _open.remove(path); });
    }
    co_await takeBack(wanted);
    co_return removed;
}

// All of it or nothing.
QCoro::Task<Result<QStringList>> UninstallSequence::setDataAside()
{
    const QPointer self(this);
    const QFuture<Result<QStringList>> asked =
        QtConcurrent::run(&uninstallWorkers(), movableData, _plan.review.app.source.userDataRemoved,
                          _plan.search.protectedPaths);
    const Result<QStringList> data = co_await asked;
    if (!self || !data)
        co_return data;
    QStringList aside;
    for (const QString &path : *data) {
        const Result<void> moved = co_await _trash.move(path);
        if (!self)
            co_return aside;
        if (!moved) {
            co_await takeBack(aside);
            co_return failure(u"会被 %1 删除的数据移不开，没有卸载"_s.arg(_plan.review.app.source.manager));
        }
        aside.append(path);
    }
    co_return aside;
}

QCoro::Task<> UninstallSequence::takeBack(QStringList paths)
{
    const QPointer self(this);
    for (const QString &path : paths) {
        co_await _trash.takeBack(path);
        if (!self)
            co_return;
    }
}

QCoro::Task<> UninstallSequence::takeCompanions()
{
    const QPointer self(this);
    const QFuture<QStringList> asked =
        QtConcurrent::run(&uninstallWorkers(), allowedCompanions, _plan.review.app.source.companions,
                          _plan.search.protectedPaths);
    const QStringList allowed = co_await asked;
    if (!self)
        co_return;
    QStringList paths;
    std::ranges::copy_if(allowed, std::back_inserter(paths),
                         [this](const QString &path) { return _open.contains(path); });
    for (const QString &path : paths) {
        if (_cancellation.isCancelled())
            co_return;
        _open.remove(path);
        (void)co_await _trash.move(path);
        if (!self)
            co_return;
    }
}

QCoro::Task<> UninstallSequence::takeData()
{
    const QPointer self(this);
    const QList<LibraryFolder> folders = _plan.search.folders;
    for (const LibraryFolder &folder : folders) {
        if (_cancellation.isCancelled())
            co_return;
        Q_EMIT stageReached({Kind::scanningLibrary, label(folder.kind)});
        DataSearch search = _plan.search;
        search.folders = {folder};
        const QFuture<QList<ReviewItem>> asked = QtConcurrent::run(&uninstallWorkers(), findData, search);
        const QList<ReviewItem> found = co_await asked;
        if (!self)
            co_return;
        co_await Pause(_clock, scanningPause);
        if (!self)
            co_return;
        Q_EMIT stageReached({Kind::cleaningLibrary, label(folder.kind)});
        co_await takeEntries(ticked(found));
        if (!self)
            co_return;
    }
}

QStringList UninstallSequence::ticked(const QList<ReviewItem> &found) const
{
    QStringList paths;
    for (const ReviewItem &item : found) {
        if (_open.contains(item.path))
            paths.append(item.path);
    }
    return paths;
}

QCoro::Task<> UninstallSequence::takeEntries(QStringList paths)
{
    const QPointer self(this);
    const double base = UninstallStage{Kind::cleaningLibrary, {}}.progress();
    for (qsizetype handled = 0; handled < paths.size();) {
        if (handled > 0)
            co_await Pause(_clock, betweenEntries);
        if (!self || _cancellation.isCancelled())
            co_return;
        const QString &path = paths.at(handled);
        _open.remove(path);
        (void)co_await _trash.move(path);
        if (!self)
            co_return;
        ++handled;
        const double share = static_cast<double>(handled) / static_cast<double>(paths.size());
        Q_EMIT progressed(std::min(base + dataShare * share, mostBeforeFinishing));
    }
}

QCoro::Task<> UninstallSequence::refuseTheRest()
{
    const QPointer self(this);
    const QFuture<QStringList> asked = QtConcurrent::run(&uninstallWorkers(), stillThere, _open);
    const QStringList refused = co_await asked;
    if (!self)
        co_return;
    co_await _trash.refuse(refused, u"不属于此应用的数据，已拒绝移动"_s);
}

} // namespace velbrix
