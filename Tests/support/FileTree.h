#pragma once

#include "support/Files.h"

#include <QByteArray>
#include <QDirIterator>
#include <QList>
#include <QMap>
#include <QStringList>

#include <cstdio>
#include <cstring>
#include <filesystem>
#include <fstream>
#include <sstream>
#include <string>

#include <sys/socket.h>
#include <sys/stat.h>
#include <sys/un.h>
#include <unistd.h>

// Trees of files by native paths, of any bytes.
namespace velbrix::test::tree {

inline std::filesystem::path native(const QByteArray &path)
{
    return std::string(path.constData(), size_t(path.size()));
}

inline void folder(const QByteArray &path)
{
    std::filesystem::create_directories(native(path));
}

inline void file(const QByteArray &path, const QByteArray &content = "x")
{
    std::filesystem::create_directories(native(path).parent_path());
    std::ofstream(native(path), std::ios::binary).write(content.constData(), content.size());
}

inline void link(const QByteArray &target, const QByteArray &path)
{
    ::symlink(target.constData(), path.constData());
}

inline bool exists(const QByteArray &path)
{
    struct stat facts{};
    return ::lstat(path.constData(), &facts) == 0;
}

// Listens until closed; the descriptor. The path has at most 100 bytes.
inline int socket(const QByteArray &path)
{
    sockaddr_un address{};
    address.sun_family = AF_UNIX;
    std::strncpy(address.sun_path, path.constData(), sizeof address.sun_path - 1);
    const int descriptor = ::socket(AF_UNIX, SOCK_STREAM, 0);
    if (::bind(descriptor, reinterpret_cast<const sockaddr *>(&address), sizeof address) != 0 ||
        ::listen(descriptor, 1) != 0)
        qFatal("cannot make a socket at %s", path.constData());
    return descriptor;
}

// Everything in a folder by its path there: what it is, when it was changed,
// what it holds.
inline QMap<QByteArray, QByteArray> snapshot(const QByteArray &folder)
{
    QMap<QByteArray, QByteArray> found;
    for (const auto &entry : std::filesystem::recursive_directory_iterator(native(folder))) {
        const std::string &path = entry.path().native();
        struct stat facts{};
        ::lstat(path.c_str(), &facts);
        std::ostringstream text;
        text << facts.st_ino << ' ' << facts.st_mode << ' ' << facts.st_uid << ' ' << facts.st_mtime << ' ';
        if (S_ISLNK(facts.st_mode))
            text << std::filesystem::read_symlink(entry.path()).native();
        else if (S_ISREG(facts.st_mode))
            text << std::ifstream(path, std::ios::binary).rdbuf();
        found.insert(QByteArray::fromStdString(path).sliced(folder.size() + 1),
                     QByteArray::fromStdString(text.str()));
    }
    return found;
}

} // namespace velbrix::test::tree

namespace velbrix::test {

// Files in a folder, each said as "path" or "path=content".
inline void writeFiles(const QString &folder, const QStringList &files)
{
    for (const QString &file : files) {
        const QString content = file.contains(u'=') ? file.section(u'=', 1) : QStringLiteral("x");
        writeFile(folder + u'/' + file.section(u'=', 0, 0), content.toUtf8());
    }
}

// All files below a folder, said in the same way and sorted.
inline QStringList filesBelow(const QString &folder)
{
    QStringList files;
    QDirIterator all(folder, QDir::Files | QDir::Hidden, QDirIterator::Subdirectories);
    while (all.hasNext()) {
        const QString path = all.next();
        const QString content = QString::fromUtf8(readFile(path));
        files << path.sliced(folder.size() + 1) + (content == u"x" ? QString() : u'=' + content);
    }
    files.sort();
    return files;
}

} // namespace velbrix::test
