#include "maintenance/uninstall/AppListing.h"

#include "foundation/Paths.h"
#include "maintenance/uninstall/DataSearch.h"
#include "platform/DiskUsage.h"
#include "platform/RunningPrograms.h"

#include <QCoroFuture>
#include <QFile>
#include <QFileInfo>
#include <QtConcurrent/QtConcurrentRun>

#include <algorithm>
#include <memory>
#include <utility>

using namespace Qt::StringLiterals;

namespace velbrix {
namespace {

bool areSame(const QString &one, const QString &other)
{
    return !one.isEmpty() && one.toLower() == other.toLower();
}

QList<InstalledApplication> listed(QList<InstalledApplication> found, const OwnIdentity &own)
{
    const SelfTraits self = selfTraits(own);
    found.removeIf(
        [&](const InstalledApplication &each) { return !each.isListed || isSelf(selfTraits(each), self); });
    return found;
}

AppInfo row(const InstalledApplication &source)
{
    return {.id = 0,
            .name = source.name,
            .path = source.path,
            .bundleID = source.identifier,
            .icon = source.icon,
            .size = source.size.value_or(0),
            .version = source.version.isEmpty() ? u"—"_s : source.version,
            .source = source};
}

// Those of one name keep their order.
QList<AppInfo> sortedByName(const QList<AppInfo> &apps)
{
    QList<std::pair<QString, qsizetype>> order;
    for (const AppInfo &app : apps)
        order.append({app.name.toLower(), order.size()});
    std::ranges::sort(order);
    QList<AppInfo> sorted;
    for (const auto &[name, index] : std::as_const(order))
        sorted.append(apps.at(index));
    return sorted;
}

QCoro::Task<bool> either(QCoro::Task<QSet<QString>> byName, QCoro::Task<bool> byPlace)
{
    const QSet<QString> names = co_await byName;
    const bool isInPlace = co_await byPlace;
    co_return isInPlace || !names.isEmpty();
}

} // namespace

bool isSelf(const SelfTraits &application, const SelfTraits &own)
{
    return areSame(application.path, own.path) || application.path.toLower().endsWith("/velbrix.app"_L1) ||
           areSame(application.name, own.name) || areSame(application.name, u"velbrix"_s) ||
           areSame(application.identifier, own.identifier);
}

SelfTraits selfTraits(const InstalledApplication &application)
{
    return {resolvedPath(application.path), application.name, application.identifier};
}

SelfTraits selfTraits(const OwnIdentity &own)
{
    return {resolvedPath(own.path), own.name, own.identifier};
}

QStringList programNames(const AppInfo &app)
{
    QStringList names{QFileInfo(app.path).fileName()};
    if (!app.bundleID.isEmpty())
        names.append(app.bundleID);
    for (const QString &program : app.source.programs)
        names.append(QFileInfo(program).fileName());
    return names;
}

QCoro::Task<bool> isRunning(const AppInfo &app, const RunningPrograms &programs)
{
    QStringList places = app.source.programs;
    places.append(app.path);
    for (const ApplicationCompanion &companion : app.source.companions)
        places.append(companion.path);
    return either(programs.running(programNames(app)), programs.runsFrom(places));
}

QCoro::Task<QList<AppInfo>> listedApps(QList<InstalledApplication> found, OwnIdentity own, DiskUsage &usage,
                                       Cancellation cancellation)
{
    const QFuture<QList<InstalledApplication>> asked =
        QtConcurrent::run(&uninstallWorkers(), listed, found, own);
    const QList<InstalledApplication> others = co_await asked;
    if (cancellation.isCancelled())
        co_return QList<AppInfo>();
    const auto apps = std::make_shared<QList<AppInfo>>();
    QList<QByteArray> unmeasured;
    QList<qsizetype> rows;
    for (const InstalledApplication &each : others) {
        // Of a managed one only the launcher is known, which says nothing.
        if (!each.size && each.kind != InstalledApplication::Kind::managed) {
            rows.append(apps->size());
            unmeasured.append(QFile::encodeName(each.path));
        }
        apps->append(row(each));
    }
    const DiskUsage::Measured measured = [apps, rows](qsizetype index, qint64 bytes) {
        (*apps)[rows.at(index)].size = bytes;
    };
    co_await usage.measure(unmeasured, measured, cancellation);
    if (cancellation.isCancelled())
        co_return QList<AppInfo>();
    const QList<AppInfo> sorted = sortedByName(*apps);
    co_return sorted;
}

} // namespace velbrix
