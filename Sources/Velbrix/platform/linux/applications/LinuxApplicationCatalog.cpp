#include "platform/linux/applications/LinuxApplicationCatalog.h"

#include "foundation/Log.h"
#include "platform/linux/applications/InstalledApplications.h"
#include "platform/linux/applications/PackageQueries.h"
#include "platform/linux/applications/PackageRemoval.h"

#include <QCoroFuture>
#include <QtConcurrentRun>

using namespace Qt::StringLiterals;
using namespace std::chrono_literals;

namespace velbrix {
namespace {

HostFindings readFiles(const ApplicationPlaces &places)
{
    HostFindings findings;
    findings.launchers = installedLaunchers(places);
    findings.images = takeAppImages(places, findings.launchers);
    return findings;
}

// Empty when the program is missing or does not answer.
QCoro::Task<QByteArray> listing(Clock &clock, QStringList command)
{
    if (command[0].isEmpty())
        co_return QByteArray();
    ProcessRunner runner(clock);
    ProcessRequest request = hostCommand(command);
    request.timeout = 20s;
    const auto outcome = co_await runner.run(request);
    if (outcome && outcome->succeeded())
        co_return QByteArray(outcome->output);
    log::line(u"Applications"_s,
              command[0] + u": "_s + (outcome ? lastLine(*outcome) : outcome.error().message));
    co_return QByteArray();
}

QCoro::Task<HostFindings> withPackages(Clock &clock, std::optional<PackageManager> manager,
                                       HostFindings findings)
{
    QStringList paths;
    for (const Launcher &launcher : std::as_const(findings.launchers)) {
        if (launcher.isShown && !launcher.isOwn && launcher.entry.snap.isEmpty() &&
            launcher.entry.flatpak.isEmpty())
            paths.append(launcher.path);
    }
    if (!manager)
        co_return std::move(findings);
    const auto owners = co_await packageOwners(clock, *manager, paths);
    if (!owners) {
        log::line(u"Applications"_s, owners.error().message);
        co_return std::move(findings);
    }
    findings.manager = manager->name;
    QSet<QString> packages;
    for (const QString &path : std::as_const(paths)) {
        if (const QString package = owners->value(path); !package.isEmpty()) {
            findings.owners.insert(path, package);
            packages.insert(package);
        }
    }
    const QStringList names = packages.values();
    findings.facts = co_await packageFacts(clock, *manager, names);
    co_return std::move(findings);
}

} // namespace

LinuxApplicationCatalog::LinuxApplicationCatalog(Clock &clock, ApplicationPlaces places,
                                                 PackagePrograms programs)
    : _clock(clock),
      _places(std::move(places)),
      _programs(std::move(programs)),
      _threads(std::make_shared<QThreadPool>())
{
    _threads->setMaxThreadCount(1);
}

QCoro::Task<Result<QList<InstalledApplication>>> LinuxApplicationCatalog::applications()
{
    const ApplicationPlaces places = _places;
    const auto threads = _threads;
    Clock &clock = _clock;
    const auto manager = systemPackageManager(_programs);
    const QStringList flatpakList{_programs.flatpak, u"list"_s, u"--app"_s,
                                  u"--columns=application,name,version,size,installation"_s};
    const QStringList snapList{_programs.snap, u"list"_s};
    // All three work at the same time.
    auto flatpaks = listing(clock, flatpakList);
    auto snaps = listing(clock, snapList);
    const QFuture<HostFindings> reading = QtConcurrent::run(threads.get(), readFiles, places);
    const HostFindings files = co_await reading;
    HostFindings findings = co_await withPackages(clock, manager, files);
    findings.flatpaks = flatpakApplications(co_await flatpaks);
    findings.snaps = snapVersions(co_await snaps);
    co_return installedApplications(places, findings);
}

OwnIdentity LinuxApplicationCatalog::ownIdentity() const
{
    return {_places.executable, u"Velbrix"_s, u"velbrix"_s};
}

QList<LibraryFolder> LinuxApplicationCatalog::libraryFolders() const
{
    return _places.libraryFolders();
}

QCoro::Task<Result<QStringList>>
LinuxApplicationCatalog::packagesRemovedWith(const InstalledApplication application)
{
    return simulateRemoval(_clock, _places, _programs, application);
}

QCoro::Task<Result<void>> LinuxApplicationCatalog::removeManaged(const InstalledApplication application,
                                                                 const QStringList agreed,
                                                                 Cancellation cancellation)
{
    return removeThroughManager(_clock, _places, _programs, application, agreed, cancellation);
}

} // namespace velbrix
