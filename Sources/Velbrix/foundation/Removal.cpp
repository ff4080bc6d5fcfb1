#include "foundation/Removal.h"

#include "foundation/FolderHandle.h"
#include "foundation/Paths.h"
#include "foundation/RemovalGuard.h"
#include "foundation/RemovalWalk.h"

#include <cerrno>
#include <utility>

using namespace Qt::StringLiterals;

namespace velbrix {
namespace {

// More than anyone reads; a broken disk would name every file.
constexpr qsizetype keptProblems = 100;

// With the obstacle, if any.
std::pair<FolderHandle, QString> openRoot(const QByteArray &folder, const QByteArray &canonicalPath,
                                          const RemovalGuard &guard)
{
    if (!folder.startsWith('/'))
        return {FolderHandle(), u"不是完整的路径"_s};
    if (canonicalPath.isEmpty())
        return {FolderHandle(), errno == ENOENT ? u"文件夹不存在"_s : removalReason(errno)};
    FolderHandle handle = FolderHandle::open(canonicalPath);
    if (!handle.isOpen())
        return {FolderHandle(), errno == ENOTDIR ? u"不是文件夹"_s : removalReason(errno)};
    const auto facts = handle.ownFacts();
    QString obstacle = facts ? guard.rootObstacle(canonicalPath, *facts) : removalReason(errno);
    if (!obstacle.isEmpty())
        handle.close();
    return {std::move(handle), obstacle};
}

bool isEntryName(const QByteArray &name)
{
    return !name.isEmpty() && name != "." && name != ".." && !name.contains('/') && !name.contains('\0');
}

} // namespace

void RemovalReport::add(const RemovalReport &other)
{
    freedBytes += other.freedBytes;
    removedFiles += other.removedFiles;
    problemCount += other.problemCount;
    problems += other.problems.first(std::min(other.problems.size(), keptProblems - problems.size()));
}

struct RemovalRoot::State {
    State(const QByteArray &folder, RemovalRules rules)
        : guard(std::move(rules)),
          path(velbrix::canonicalPath(folder)),
          handle(openRoot(folder, path, guard).first)
    {
    }

    RemovalGuard guard;
    QByteArray path;
    FolderHandle handle;
};

QString RemovalRoot::obstacle(const QByteArray &folder, const RemovalRules &rules)
{
    const RemovalGuard guard(rules);
    const QByteArray path = velbrix::canonicalPath(folder);
    return openRoot(folder, path, guard).second;
}

RemovalRoot::RemovalRoot(const QByteArray &folder, RemovalRules rules)
    : _state(std::make_unique<State>(folder, std::move(rules)))
{
}

RemovalRoot::~RemovalRoot() = default;

bool RemovalRoot::isOpen() const
{
    return _state->handle.isOpen();
}

const QByteArray &RemovalRoot::canonicalPath() const
{
    return _state->path;
}

QList<QByteArray> RemovalRoot::entries() const
{
    return isOpen() ? _state->handle.names().value_or(QList<QByteArray>()) : QList<QByteArray>();
}

qint64 RemovalRoot::ownSize(const QByteArray &entry) const
{
    const auto facts = isOpen() && isEntryName(entry) ? _state->handle.facts(entry) : std::nullopt;
    return facts ? facts->st_size : 0;
}

bool RemovalRoot::mayGo(const QByteArray &entry) const
{
    if (!isOpen() || !isEntryName(entry))
        return false;
    const Cancellation never; // the walk only refers to it
    RemovalWalk walk(_state->handle, _state->path, _state->guard, never);
    return !_state->guard.hasMinimumAge() || walk.mayGo(entry);
}

RemovalReport RemovalRoot::remove(const QByteArray &entry, const Cancellation &cancellation) const
{
    if (!isOpen() || !isEntryName(entry)) {
        RemovalReport refused;
        refused.problems = {{_state->path + '/' + entry, u"不在可以清理的文件夹里"_s}};
        refused.problemCount = 1;
        return refused;
    }
    RemovalWalk walk(_state->handle, _state->path, _state->guard, cancellation);
    if (!_state->guard.hasMinimumAge() || walk.mayGo(entry))
        walk.remove(entry);
    return walk.report();
}

} // namespace velbrix
