#include "platform/linux/processes/ProcPrograms.h"

#include "foundation/Paths.h"
#include "platform/linux/files/FileDescriptor.h"

#include <QFile>

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
    QByteArray argument0() const { return arguments().value(0); }
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
        QByteArray image, mount;
        for (const QByteArray &entry : contents(_folder + "/environ", 1 << 17).split('\0')) {
            if (entry.startsWith("APPIMAGE="))
                image = entry.sliced(9);
            else if (entry.startsWith("APPDIR="))
                mount = entry.sliced(7);
        }
        // Whatever an AppImage starts inherits both.
        return !mount.isEmpty() && isWithin(executablePath, mount) ? image : QByteArray();
    }

private:
    const QList<QByteArray> &arguments() const
    {
        if (_arguments.isEmpty())
            _arguments = contents(_folder + "/cmdline", 4096).split('\0');
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

} // namespace

QSet<QString> ProcPrograms::running(const QStringList &names) const
{
    QSet<QByteArray> wanted;
    for (const QString &name : names) {
        if (!name.isEmpty())
            wanted.insert(QFile::encodeName(name));
    }
    QSet<QString> found;
    anyProcess([&](const Process &process) {
        const QByteArray executable = process.executable();
        if (executable.isEmpty()) // the kernel's own, or beyond reach
            return false;
        for (const QByteArray &path : {executable, process.argument0(), process.script()}) {
            if (const QByteArray name = baseName(path); wanted.contains(name))
                found.insert(QFile::decodeName(name));
        }
        return found.size() == wanted.size();
    });
    return found;
}

bool ProcPrograms::runsFrom(const QString &path) const
{
    const QByteArray place = QFile::encodeName(resolvedPath(path));
    if (!place.startsWith('/'))
        return false;
    const auto isThere = [&place](const QByteArray &file) {
        if (!file.startsWith('/'))
            return false;
        return isWithin(file, place) || isWithin(canonicalPath(file), place);
    };
    return anyProcess([&](const Process &process) {
        const QByteArray executable = process.executable();
        return isWithin(executable, place) || isThere(process.script()) || isThere(process.image(executable));
    });
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

std::optional<QSet<QByteArray>> ProcPrograms::boundSockets() const
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

} // namespace velbrix
