#include "platform/linux/applications/LauncherScan.h"

#include "foundation/Paths.h"

#include <QDir>
#include <QDirIterator>
#include <QFile>
#include <QFileInfo>
#include <QHash>
#include <QRegularExpression>
#include <QStandardPaths>

#include <unistd.h>

using namespace Qt::StringLiterals;

namespace velbrix {
namespace {

constexpr qint64 iconLimit = 16 << 20;

// Entries below /usr belong to the distribution, also when its package manager
// does not know them.
bool isRemovableFile(const QString &path)
{
    if (path.startsWith(u"/usr/"_s) && !path.startsWith(u"/usr/local/"_s))
        return false;
    const QByteArray folder = QFile::encodeName(QFileInfo(path).absolutePath());
    return ::access(folder.constData(), W_OK | X_OK) == 0;
}

// Programs that many applications run in.
bool isRunner(const QString &program)
{
    static const QRegularExpression runner(
        u"(^|/)(java|python[\\d.]*|perl|ruby|node|mono|wine\\d*|(ba|da|z)?sh|flatpak|snap)$"_s);
    return runner.match(program).hasMatch();
}

// The first argument, or what "env NAME=VALUE …" starts, or the file that is
// run by "java -jar" and the like.
QString startedProgram(const QString &exec)
{
    QStringList arguments = execArguments(exec);
    if (!arguments.isEmpty() && (arguments[0] == u"env" || arguments[0].endsWith(u"/env"))) {
        do
            arguments.removeFirst();
        while (!arguments.isEmpty() && arguments[0].contains(u'='));
    }
    if (isRunner(arguments.value(0)))
        arguments.removeIf([](const QString &word) { return !word.startsWith(u'/') || isRunner(word); });
    const QString program = arguments.value(0);
    if (program.startsWith(u'/'))
        return QDir::cleanPath(program);
    return program.isEmpty() || program.contains(u'/') ? QString() : QStandardPaths::findExecutable(program);
}

bool isPlainFile(const QString &path)
{
    const QFileInfo file(path);
    return file.isFile() && !file.isSymLink();
}

Launcher launcherAt(const QString &path, const QString &id, bool isOwn, DesktopEntry entry,
                    const ApplicationPlaces &places)
{
    Launcher launcher;
    launcher.id = id;
    launcher.path = path;
    launcher.entry = std::move(entry);
    launcher.isOwn = isOwn;
    launcher.isShown = launcher.entry.isShown(places.desktops);
    launcher.isRemovable = isOwn || isRemovableFile(path);
    const QString program = startedProgram(launcher.entry.exec);
    if (isOwn && !program.isEmpty() && isPlainFile(program) && places.isBelowHome(program))
        launcher.program = program;
    else if (!isOwn) // else it may be a page of a browser or a game of a shop
        launcher.systemProgram = program;
    const QFileInfo icon(launcher.entry.icon);
    if (launcher.entry.icon.startsWith(u'/') && icon.isFile() && icon.size() <= iconLimit)
        launcher.iconFile = QDir::cleanPath(launcher.entry.icon);
    return launcher;
}

// An entry comes after that of the same id which hides it.
void addHidden(QList<Launcher> &launchers, qsizetype hiding, Launcher launcher)
{
    Launcher &before = launchers[hiding];
    if (canonicalPath(launcher.path) == canonicalPath(before.path))
        return; // one folder under two names
    if (before.isOwn && before.program.isEmpty() && !launcher.isOwn) {
        launcher.isShown = before.isShown;
        launcher.copies = {before.path};
        before = std::move(launcher);
        return;
    }
    launcher.isShown = launcher.isShown && before.isOwn && !launcher.isOwn;
    launchers.append(std::move(launcher));
}

void markShared(QList<Launcher> &launchers)
{
    QHash<QString, int> users;
    for (const Launcher &launcher : std::as_const(launchers)) {
        if (!launcher.program.isEmpty())
            ++users[canonicalPath(launcher.program)];
    }
    for (Launcher &launcher : launchers)
        launcher.sharesProgram =
            !launcher.program.isEmpty() && users.value(canonicalPath(launcher.program)) > 1;
}

} // namespace

QList<Launcher> installedLaunchers(const ApplicationPlaces &places)
{
    QList<Launcher> launchers;
    QHash<QString, qsizetype> first; // by id
    const auto scan = [&](const QString &folder, bool isOwn) {
        QDirIterator files(folder, {u"*.desktop"_s}, QDir::Files | QDir::Hidden | QDir::CaseSensitive,
                           QDirIterator::Subdirectories);
        while (files.hasNext()) {
            const QString path = files.next();
            const QString id = path.sliced(folder.size() + 1).chopped(8).replace(u'/', u'-');
            std::optional<DesktopEntry> entry = id.isEmpty() ? std::nullopt : readDesktopEntry(path);
            if (!entry)
                continue;
            Launcher launcher = launcherAt(path, id, isOwn, std::move(*entry), places);
            if (const auto hiding = first.constFind(id); hiding != first.constEnd()) {
                addHidden(launchers, *hiding, std::move(launcher));
                continue;
            }
            first.insert(id, launchers.size());
            launchers.append(std::move(launcher));
        }
    };
    scan(places.launcherFolder(), true);
    for (const QString &folder : places.dataFolders) {
        if (folder != places.dataHome)
            scan(folder + u"/applications"_s, false);
    }
    markShared(launchers);
    return launchers;
}

} // namespace velbrix
