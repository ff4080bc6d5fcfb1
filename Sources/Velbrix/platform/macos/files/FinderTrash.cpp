#include "platform/macos/files/FinderTrash.h"

#include "foundation/Paths.h"

#include <QDir>
#include <QFileInfo>
#include <QRegularExpression>

#include <utility>

using namespace Qt::StringLiterals;

namespace velbrix {
namespace {

ProcessRequest request(const QString &osascript, const QString &script)
{
    ProcessRequest request;
    request.program = osascript;
    request.arguments = {u"-e"_s, script};
    return request;
}

QString deleteScript(const QString &path)
{
    QString quoted = path;
    quoted.replace(u'\\', u"\\\\"_s).replace(u'"', u"\\\""_s);
    return u"tell application \"Finder\" to delete POSIX file \""_s + quoted + u'"';
}

bool isThere(const QString &path)
{
    const QFileInfo item(path);
    return item.exists() || item.isSymLink();
}

} // namespace

FinderTrash::FinderTrash(Clock &clock, QString osascript) : _runner(clock), _osascript(std::move(osascript))
{
}

bool FinderTrash::isTrashed(const QString &path, const QString &home, uint user)
{
    if (QDir::cleanPath(path) != path)
        return false;
    static const QRegularExpression volume(u"^/Volumes/[^/]+"_s);
    const QString mounted = volume.match(path).captured();
    const QString shared = u"/.Trashes/"_s + QString::number(user);
    return isInside(path, home + u"/.Trash"_s) || (!mounted.isEmpty() && isInside(path, mounted + shared)) ||
           isInside(path, shared);
}

QCoro::Task<Result<void>> FinderTrash::moveToTrash(const QString path) const
{
    if (!isThere(path))
        co_return failure(u"文件不存在"_s);
    ProcessRunner runner = _runner;
    ProcessRequest deleting = request(_osascript, deleteScript(path));
    const auto outcome = co_await runner.run(std::move(deleting));
    if (!isThere(path))
        co_return Result<void>();
    if (!outcome)
        co_return std::unexpected(outcome.error());
    co_return failure(u"访达没有把它移到废纸篓"_s);
}

QCoro::Task<Result<void>> FinderTrash::empty() const
{
    ProcessRunner runner = _runner;
    ProcessRequest emptying = request(_osascript, u"tell application \"Finder\" to empty trash"_s);
    const auto outcome = co_await runner.run(std::move(emptying));
    if (!outcome)
        co_return std::unexpected(outcome.error());
    if (!outcome->succeeded())
        co_return failure(
            u"访达没有清空废纸篓：%1"_s.arg(QString::fromUtf8(outcome->errorOutput).trimmed().left(200)));
    co_return Result<void>();
}

} // namespace velbrix
