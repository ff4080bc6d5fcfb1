#include "platform/linux/processes/ProcPrograms.h"

#include "foundation/Paths.h"
#include "platform/linux/files/FileDescriptor.h"

#include <QCoroFuture>
#include <QFile>
#include <QHash>
#include <QThreadPool>
#include <QtConcurrent/QtConcurrentRun>

#include <algorithm>
#include <array>
#include <functional>

#include <dirent.h>
#include <fcntl.h>
#include <sys/stat.h>
#include <unistd.h>

using namespace Qt::StringLiterals;

namespace velbrix {
namespace {

QByteArray linkTarget(const QByteArray &path)
{
    std::array<char, 4096> target{};
    const ssize_t size = ::readlink(path.constData(), target.data(), target.size());
    return {target.data(), std::max<ssize_t>(size, 0)};
}

// Plain system calls: hundreds of files are read at a time.
QByteArray contents(const QByteArray &path, qsizetype limit)
{
    const FileDescriptor file(::open(path.constData(), O_RDONLY | O_CLOEXEC));
    if (!file)
        return {};
    std::array<char, 16384> piece;
    QByteArray text;
    while (text.size() < limit) {
        const ssize_t size = ::read(file.number(), piece.data(), piece.size());
        if (size <= 0)
            break;
        text.append(piece.data(), size);
    }
    return text;
}

QByteArray baseName(const QByteArray &path)
{
    return path.mid(path.lastIndexOf('/') + 1);
}

// A class path alone can be that long.
constexpr qsizetype longestCommand = 1 << 17;

// The virtual machine is called alike whatever it runs; its arguments tell.
bool isJava(const QByteArray &executable)
{
    return baseName(executable) == "java";
}

QList<QByteArray> javaFiles(const QList<QByteArray> &arguments)
{
    QList<QByteArray> files;
    for (qsizetype i = 1; i < arguments.size(); ++i) {
        if (arguments[i] == "-jar" || arguments[i] == "-cp" || arguments[i] == "-classpath")
            files += arguments.value(i + 1).split(':');
    }
    return files;
}

// An archive by its name, one of JetBrains' programs by that of its folders.
QList<QByteArray> javaNames(const QList<QByteArray> &arguments)
{
    constexpr QByteArrayView selector = "-Didea.paths.selector=";
    QList<QByteArray> names;
    for (qsizetype i = 1; i < arguments.size(); ++i) {
        if (arguments[i] == "-jar")
            names << baseName(arguments.value(i + 1));
        else if (arguments[i].startsWith(selector))
            names << arguments[i].sliced(selector.size());
    }
    return names;
}

// An application's start script lies in bin/, the archives that it runs beside
// that in lib/.
QByteArray archiveFolder(const QByteArray &script)
{
    const QByteArray bin = splitPath(script).first;
    const QByteArray folder = splitPath(bin).first;
    const bool isEverybodys = folder == "/" || folder == "/usr" || folder == "/usr/local";
    return baseName(bin) == "bin" && !isEverybodys ? folder + "/lib" : QByteArray();
}

class Process {
public:
    explicit Process(QByteArray folder) : _folder(std::move(folder)) {}

    const QByteArray &folder() const { return _folder; }
    // As it was called when it started; one that was replaced since runs on.
    QByteArray executable() const
    {
        const QByteArray target = linkTarget(_folder + "/exe");
        return target.endsWith(" (deleted)") ? target.chopped(10) : target;
    }
    // What it may be asked for by: the program, the script or Java archive that
    // it runs, and the sandbox that it runs in.
    QList<QByteArray> names() const
    {
        const QByteArray file = executable();
        QList<QByteArray> names{baseName(file), baseName(arguments().value(0)), baseName(script()),
                                sandboxName(contents(_folder + "/cgroup", 1 << 14))};
        const auto settings = environment();
        names << settings.value("FLATPAK_ID");
        if (const QByteArray snap = settings.value("SNAP_INSTANCE_NAME"); !snap.isEmpty())
            names << "snap." + snap;
        if (isJava(file))
            names += javaNames(arguments());
        return names;
    }
    // What it runs beside its executable: a script, an AppImage, Java archives.
    QList<QByteArray> files() const
    {
        const QByteArray file = executable();
        return QList<QByteArray>{script(), image(file)} +
               (isJava(file) ? javaFiles(arguments()) : QList<QByteArray>());
    }

private:
    // The script that an interpreter runs; else empty.
    QByteArray script() const
    {
        // The kernel gives the process the script's name, cut off.
        const QByteArray second = arguments().value(1);
        if (second.isEmpty())
            return {};
        const QByteArray name = contents(_folder + "/comm", 64).trimmed();
        constexpr qsizetype keptName = 15;
        const bool isNamedSo =
            !name.isEmpty() && baseName(second).first(std::min(baseName(second).size(), keptName)) == name;
        return isNamedSo ? second : QByteArray();
    }
    // The AppImage whose contents it runs; else empty.
    QByteArray image(const QByteArray &executablePath) const
    {
        const auto settings = environment();
        const QByteArray mount = settings.value("APPDIR");
        // Whatever an AppImage starts inherits both.
        return !mount.isEmpty() && isWithin(executablePath, mount) ? settings.value("APPIMAGE")
                                                                   : QByteArray();
    }
    QHash<QByteArray, QByteArray> environment() const
    {
        QHash<QByteArray, QByteArray> settings;
        for (const QByteArray &entry : contents(_folder + "/environ", 1 << 17).split('\0')) {
            if (const auto equals = entry.indexOf('='); equals > 0)
                settings.insert(entry.first(equals), entry.sliced(equals + 1));
        }
        return settings;
    }
    const QList<QByteArray> &arguments() const
    {
        if (_arguments.isEmpty())
            _arguments = contents(_folder + "/cmdline", longestCommand).split('\0');
        return _arguments;
    }

    QByteArray _folder;
    mutable QList<QByteArray> _arguments;
};

// Until the visitor is content.
bool anyProcess(const std::function<bool(const Process &)> &visitor)
{
    DIR *listing = ::opendir("/proc");
    if (!listing)
        return false;
    bool isFound = false;
    while (const dirent *entry = isFound ? nullptr : ::readdir(listing)) {
        if (entry->d_name[0] < '1' || entry->d_name[0] > '9')
            continue;
        struct stat facts{};
        if (::fstatat(::dirfd(listing), entry->d_name, &facts, 0) == 0 && facts.st_uid == ::geteuid())
            isFound = visitor(Process(QByteArray("/proc/") + entry->d_name));
    }
    ::closedir(listing);
    return isFound;
}

// Of a place where a program may lie.
struct Place {
    QByteArray path;     // resolved
    QByteArray archives; // see archiveFolder()

    bool holds(const QByteArray &file) const
    {
        if (!file.startsWith('/'))
            return false;
        return isWithin(file, path) || isWithin(canonicalPath(file), path) ||
               (!archives.isEmpty() && file.endsWith(".jar") && isInside(file, archives));
    }
};

QSet<QString> namesRunning(const QStringList &names)
{
    QSet<QByteArray> wanted;
    for (const QString &name : names) {
        if (!name.isEmpty())
            wanted.insert(QFile::encodeName(name));
    }
    QSet<QString> found;
    anyProcess([&](const Process &process) {
        if (process.executable().isEmpty()) // the kernel's own, or beyond reach
            return false;
        for (const QByteArray &name : process.names()) {
            if (wanted.contains(name))
                found.insert(QFile::decodeName(name));
        }
        return found.size() == wanted.size();
    });
    return found;
}

bool anyRunsFrom(const QStringList &paths)
{
    QList<Place> places;
    for (const QString &path : paths) {
        const QByteArray place = QFile::encodeName(resolvedPath(path));
        if (place.startsWith('/'))
            places.append({place, archiveFolder(place)});
    }
    return !places.isEmpty() && anyProcess([&](const Process &process) {
        const QByteArray executable = process.executable();
        const QList<QByteArray> files = process.files();
        return std::ranges::any_of(places, [&](const Place &place) {
            return isWithin(executable, place.path) ||
                   std::ranges::any_of(files, [&](const QByteArray &file) { return place.holds(file); });
        });
    });
}

std::optional<QSet<QByteArray>> socketsInUse()
{
    QSet<QByteArray> namespaces{linkTarget("/proc/self/ns/net")};
    constexpr qsizetype largestTable = 1 << 26;
    const QByteArray own = contents("/proc/self/net/unix", largestTable);
    if (own.isEmpty())
        return std::nullopt;
    QSet<QByteArray> paths = socketPaths(own);
    anyProcess([&](const Process &process) {
        const QByteArray name = linkTarget(process.folder() + "/ns/net");
        if (!name.isEmpty() && !namespaces.contains(name)) {
            namespaces.insert(name);
            paths += socketPaths(contents(process.folder() + "/net/unix", largestTable));
        }
        return false;
    });
    return paths;
}

// A file of a program may lie on a disk that never answers.
QThreadPool &workers()
{
    static auto *const pool = new QThreadPool;
    return *pool;
}

} // namespace

QCoro::Task<QSet<QString>> ProcPrograms::running(QStringList names) const
{
    const QFuture<QSet<QString>> looking = QtConcurrent::run(&workers(), namesRunning, names);
    co_return co_await looking;
}

QCoro::Task<bool> ProcPrograms::runsFrom(QStringList paths) const
{
    const QFuture<bool> looking = QtConcurrent::run(&workers(), anyRunsFrom, paths);
    co_return co_await looking;
}

QCoro::Task<std::optional<QSet<QByteArray>>> ProcPrograms::boundSockets() const
{
    const QFuture<std::optional<QSet<QByteArray>>> looking = QtConcurrent::run(&workers(), socketsInUse);
    co_return co_await looking;
}

QByteArray sandboxName(const QByteArray &groups)
{
    for (const QByteArray &line : groups.split('\n')) {
        // systemd writes what a unit's name must not hold as "\x2d".
        QByteArray unit = baseName(line);
        for (qsizetype at; (at = unit.indexOf("\\x")) >= 0;)
            unit.replace(at, 4, QByteArray::fromHex(unit.mid(at + 2, 2)));
        if (!unit.endsWith(".scope"))
            continue;
        constexpr QByteArrayView flatpak = "app-flatpak-";
        if (unit.startsWith(flatpak))
            return unit.sliced(flatpak.size(), unit.lastIndexOf('-') - flatpak.size());
        if (unit.startsWith("snap."))
            return unit.first(unit.indexOf('.', 5));
    }
    return {};
}

QSet<QByteArray> socketPaths(const QByteArray &table)
{
    // A path with line breaks goes on in the next lines, which lack the eight columns.
    QList<QByteArray> entries;
    for (const QByteArray &line : (table.endsWith('\n') ? table.chopped(1) : table).split('\n')) {
        const qsizetype colon = line.indexOf(": ");
        bool begins = false;
        if (colon > 0)
            line.first(colon).toULongLong(&begins, 16);
        if (begins || line.startsWith("Num "))
            entries.append(line);
        else if (!entries.isEmpty())
            entries.last() += '\n' + line;
    }
    QSet<QByteArray> paths;
    constexpr int columnsBefore = 7;
    for (const QByteArray &entry : entries) {
        qsizetype at = 0;
        for (int column = 0; column < columnsBefore && at >= 0; ++column) {
            while (at < entry.size() && entry[at] == ' ')
                ++at;
            at = entry.indexOf(' ', at);
        }
        if (at < 0 || entry.startsWith("Num "))
            continue;
        const QByteArray path = entry.sliced(at + 1);
        if (!path.isEmpty() && !path.startsWith('@'))
            paths.insert(path);
    }
    return paths;
}

} // namespace velbrix
