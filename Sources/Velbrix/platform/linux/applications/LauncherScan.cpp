#include "platform/linux/applications/LauncherScan.h"

#include <QDir>
#include <QDirIterator>
#include <QFile>
#include <QFileInfo>
#include <QSet>
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

// The first argument, or what "env NAME=VALUE …" starts.
QString startedProgram(const QString &exec)
{
    const QStringList arguments = execArguments(exec);
    qsizetype at = 0;
    if (!arguments.isEmpty() && (arguments[0] == u"env" || arguments[0].endsWith(u"/env"))) {
        at = 1;
        while (at < arguments.size() && arguments[at].contains(u'='))
            ++at;
    }
    const QString program = arguments.value(at);
    if (program.isEmpty() || program.startsWith(u'/'))
        return program.isEmpty() ? QString() : QDir::cleanPath(program);
    return program.contains(u'/') ? QString() : QStandardPaths::findExecutable(program);
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
    launcher.isRemovable = isOwn || isRemovableFile(path);
    if (isOwn) {
        const QString program = startedProgram(launcher.entry.exec);
        if (!program.isEmpty() && isPlainFile(program) && places.isBelowHome(program))
            launcher.program = program;
    }
    const QFileInfo icon(launcher.entry.icon);
    if (launcher.entry.icon.startsWith(u'/') && icon.isFile() && icon.size() <= iconLimit)
        launcher.iconFile = QDir::cleanPath(launcher.entry.icon);
    return launcher;
}

} // namespace

QList<Launcher> shownLaunchers(const ApplicationPlaces &places)
{
    QList<Launcher> launchers;
    QSet<QString> seen;
    const auto scan = [&](const QString &folder, bool isOwn) {
        QDirIterator files(folder, {u"*.desktop"_s}, QDir::Files | QDir::Hidden | QDir::CaseSensitive,
                           QDirIterator::Subdirectories);
        while (files.hasNext()) {
            const QString path = files.next();
            const QString id = path.sliced(folder.size() + 1).chopped(8).replace(u'/', u'-');
            if (id.isEmpty() || seen.contains(id))
                continue;
            std::optional<DesktopEntry> entry = readDesktopEntry(path);
            if (!entry)
                continue;
            seen.insert(id);
            if (entry->isShown(places.desktops))
                launchers.append(launcherAt(path, id, isOwn, std::move(*entry), places));
        }
    };
    scan(places.launcherFolder(), true);
    for (const QString &folder : places.dataFolders) {
        if (folder != places.dataHome)
            scan(folder + u"/applications"_s, false);
    }
    return launchers;
}

} // namespace velbrix
