#include "foundation/Paths.h"

#include <QDir>
#include <QFileInfo>

#include <cstdlib>
#include <memory>

namespace velbrix {
namespace {

template <typename Text, typename Character>
bool lies(const Text &path, const Text &folder, Character slash, bool orIsIt)
{
    const qsizetype end = folder.endsWith(slash) ? folder.size() - 1 : folder.size();
    if (path.isEmpty() || folder.isEmpty() || !path.startsWith(folder.first(end)))
        return false;
    const bool isIt = path.size() == end || (path.size() == end + 1 && path.endsWith(slash));
    return isIt ? orIsIt : path.at(end) == slash;
}

} // namespace

bool isWithin(const QString &path, const QString &folder)
{
    return lies(path, folder, u'/', true);
}

bool isWithin(const QByteArray &path, const QByteArray &folder)
{
    return lies(path, folder, '/', true);
}

bool isInside(const QString &path, const QString &folder)
{
    return lies(path, folder, u'/', false);
}

bool isInside(const QByteArray &path, const QByteArray &folder)
{
    return lies(path, folder, '/', false);
}

QString canonicalPath(const QString &path)
{
    return path.isEmpty() ? QString() : QFileInfo(path).canonicalFilePath();
}

QByteArray canonicalPath(const QByteArray &path)
{
    const std::unique_ptr<char, decltype(&std::free)> found(::realpath(path.constData(), nullptr),
                                                            &std::free);
    return QByteArray(found.get());
}

QString resolvedPath(const QString &path)
{
    const QString found = canonicalPath(path);
    return found.isEmpty() ? QDir::cleanPath(path) : found;
}

QString shortenedPath(const QString &path, const QString &home)
{
    return home.size() > 1 && isWithin(path, home) ? u'~' + path.sliced(home.size()) : path;
}

std::pair<QByteArray, QByteArray> splitPath(const QByteArray &path)
{
    const qsizetype slash = path.lastIndexOf('/');
    return {slash <= 0 ? QByteArray("/") : path.first(slash), path.mid(slash + 1)};
}

bool isEmptyFolder(const QString &path)
{
    return QFileInfo(path).isDir() &&
           QDir(path).isEmpty(QDir::AllEntries | QDir::NoDotAndDotDot | QDir::Hidden | QDir::System);
}

} // namespace velbrix
