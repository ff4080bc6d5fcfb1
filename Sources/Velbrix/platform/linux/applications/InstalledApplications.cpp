#include "platform/linux/applications/InstalledApplications.h"

#include <QFileInfo>
#include <QSet>

using namespace Qt::StringLiterals;

namespace velbrix {
namespace {

using Kind = InstalledApplication::Kind;

// A theme's icon is looked for when it is first drawn.
QIcon iconOf(const QString &name, const QString &file)
{
    if (!file.isEmpty())
        return QIcon(file);
    return name.isEmpty() || name.contains(u'/') ? QIcon() : QIcon::fromTheme(name);
}

InstalledApplication described(const Launcher &launcher)
{
    InstalledApplication application;
    application.name = launcher.entry.name;
    application.path = launcher.path;
    application.identifier = launcher.id;
    application.version = launcher.entry.version;
    application.icon = iconOf(launcher.entry.icon, launcher.iconFile);
    application.kind = Kind::desktopEntry;
    if (!launcher.program.isEmpty())
        application.companions.append({launcher.program, launcher.startsAppImage && !launcher.sharesProgram});
    if (!launcher.systemProgram.isEmpty())
        application.programs.append(launcher.systemProgram);
    for (const QString &copy : launcher.copies)
        application.companions.append({copy, true});
    return application;
}

InstalledApplication described(const AppImage &image)
{
    InstalledApplication application;
    application.name = image.name;
    application.path = image.path;
    application.identifier = image.identifier;
    application.version = image.version;
    application.icon = iconOf(image.iconName, image.iconFile);
    application.kind = Kind::appImage;
    application.companions = image.companions;
    return application;
}

InstalledApplication managed(InstalledApplication application, const QString &manager, const QString &package)
{
    application.kind = Kind::managed;
    application.manager = manager;
    application.package = package;
    return application;
}

InstalledApplication described(const FlatpakApplication &flatpak, const Launcher *launcher,
                               const ApplicationPlaces &places)
{
    InstalledApplication application = launcher ? described(*launcher) : InstalledApplication();
    if (!launcher) {
        application.name = flatpak.name;
        application.icon = QIcon::fromTheme(flatpak.id);
    }
    application.path =
        (flatpak.isUsers ? places.userFlatpakFolder() : places.flatpakFolder) + u"/app/"_s + flatpak.id;
    application.identifier = flatpak.id;
    application.version = flatpak.version;
    application.size = flatpak.size;
    application.companions.removeIf(
        [](const ApplicationCompanion &companion) { return !companion.isCertain; });
    if (launcher && launcher->isOwn)
        application.companions = {{launcher->path, true}};
    return managed(std::move(application), u"Flatpak"_s, flatpak.id);
}

// With what snapd deletes of it.
InstalledApplication ofSnap(const Launcher &launcher, const QString &snap, const ApplicationPlaces &places)
{
    InstalledApplication application = managed(described(launcher), u"Snap"_s, snap);
    application.identifier = snap;
    application.programs = {u"/snap/"_s + snap};
    application.userDataRemoved = {places.home + u"/snap/"_s + snap, places.home + u"/.snap/data/"_s + snap};
    application.systemDataRemoved = {u"/var/snap/"_s + snap};
    return application;
}

// None for what cannot be removed.
std::optional<InstalledApplication> ofSystem(const Launcher &launcher, const HostFindings &findings,
                                             const ApplicationPlaces &places)
{
    const QString snap = launcher.entry.snap;
    if (!snap.isEmpty()) {
        if (!findings.snaps.contains(snap))
            return std::nullopt;
        InstalledApplication application = ofSnap(launcher, snap, places);
        application.version = findings.snaps.value(snap);
        return application;
    }
    const QString package = findings.owners.value(launcher.path);
    if (isPackageName(package)) {
        InstalledApplication application = managed(described(launcher), findings.manager, package);
        const PackageFacts facts = findings.facts.value(package);
        application.version = facts.version;
        application.size = facts.size;
        return application;
    }
    if (findings.manager.isEmpty() || !launcher.isRemovable || !launcher.entry.flatpak.isEmpty())
        return std::nullopt;
    return described(launcher);
}

} // namespace

QList<InstalledApplication> installedApplications(const ApplicationPlaces &places,
                                                  const HostFindings &findings)
{
    QList<InstalledApplication> applications;
    QHash<QString, const Launcher *> exported;
    for (const Launcher &launcher : findings.launchers) {
        const QString id = launcher.entry.flatpak;
        if (launcher.isShown && !id.isEmpty() && !exported.contains(id))
            exported.insert(id, &launcher);
    }
    QSet<QString> flatpakIds;
    for (const FlatpakApplication &flatpak : findings.flatpaks) {
        flatpakIds.insert(flatpak.id);
        applications.append(described(flatpak, exported.value(flatpak.id), places));
    }
    for (const AppImage &image : findings.images)
        applications.append(described(image));
    for (const Launcher &launcher : findings.launchers) {
        if (flatpakIds.contains(launcher.entry.flatpak))
            continue;
        std::optional<InstalledApplication> application =
            launcher.isOwn ? described(launcher) : ofSystem(launcher, findings, places);
        const bool isListed = launcher.isShown && application;
        applications.append(application ? std::move(*application) : described(launcher));
        applications.last().isListed = isListed;
    }
    return applications;
}

} // namespace velbrix
