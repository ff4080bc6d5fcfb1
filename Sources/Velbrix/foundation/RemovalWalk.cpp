#include "foundation/RemovalWalk.h"

#include <algorithm>
#include <cerrno>
#include <utility>

using namespace Qt::StringLiterals;

namespace velbrix {
namespace {

constexpr size_t openLevels = 64; // a Mac grants a program 256 open files
constexpr qint64 blockSize = 512; // the unit of st_blocks, whatever the disk's own

} // namespace

RemovalWalk::RemovalWalk(const FolderHandle &root, const QByteArray &rootPath, const RemovalGuard &guard,
                         const Cancellation &cancellation)
    : _root(root),
      _guard(guard),
      _cancellation(cancellation),
      _rootFacts(root.ownFacts()),
      _mount(root.mount()),
      _path(rootPath)
{
}

bool RemovalWalk::mayGo(const QByteArray &entry)
{
    _mustStay = false;
    run(entry, Purpose::rehearse);
    return !_mustStay;
}

void RemovalWalk::remove(const QByteArray &entry)
{
    _mustStay = false;
    run(entry, Purpose::remove);
}

void RemovalWalk::run(const QByteArray &entry, Purpose purpose)
{
    if (!_rootFacts)
        return;
    const qsizetype rootLength = _path.size();
    _purpose = purpose;
    _levels.clear();
    _levels.push_back({.name = {}, .facts = *_rootFacts, .pending = {entry}, .handle = {}});
    while (!_cancellation.isCancelled() && !(_mustStay && purpose == Purpose::rehearse)) {
        if (!_levels.back().pending.isEmpty())
            visit(_levels.back().pending.takeLast());
        else if (_levels.size() > 1)
            leave();
        else
            break;
    }
    _path.truncate(rootLength);
}

void RemovalWalk::visit(const QByteArray &name)
{
    const FolderHandle *folder = innermost();
    if (!folder)
        return;
    const qsizetype length = _path.size();
    _path.append('/').append(name);
    if (const auto facts = folder->facts(name); !facts) {
        if (errno != ENOENT)
            failed(errno);
    } else if (judge(*facts)) {
        if (S_ISDIR(facts->st_mode)) {
            enter(name, *facts);
            return;
        }
        removeFile(name, *facts);
    }
    _path.truncate(length);
}

// Whether the rules let it go.
bool RemovalWalk::judge(const struct stat &facts)
{
    const QString obstacle = _guard.entryObstacle(_path, facts);
    if (!obstacle.isEmpty()) {
        problem(obstacle);
        return false;
    }
    // What goes from a folder changes it, and a name that goes changes the file.
    const bool isOurDoing = _purpose == Purpose::remove &&
                            (S_ISDIR(facts.st_mode) || _unlinked.contains(FileIdentity::of(facts)));
    if (_guard.isOthers(facts) || (!isOurDoing && _guard.isYoung(facts))) {
        keep();
        return false;
    }
    return true;
}

void RemovalWalk::removeFile(const QByteArray &name, const struct stat &facts)
{
    if (_purpose == Purpose::rehearse)
        return;
    if (!handle(_levels.size() - 1).removeFile(name)) {
        if (errno != ENOENT)
            failed(errno);
        return;
    }
    ++_report.removedFiles;
    if (facts.st_nlink > 1)
        _unlinked.insert(FileIdentity::of(facts));
    else
        _report.freedBytes += qint64(facts.st_blocks) * blockSize;
}

void RemovalWalk::enter(const QByteArray &name, const struct stat &facts)
{
    const qsizetype parentLength = _path.size() - name.size() - 1;
    FolderHandle folder = handle(_levels.size() - 1).folder(name);
    int error = folder.isOpen() ? 0 : errno;
    const auto opened = folder.ownFacts();
    if (facts.st_dev != _levels.front().facts.st_dev || (opened && folder.mount() != _mount)) {
        problem(u"是另一个磁盘的挂载点"_s);
    } else if (opened && FileIdentity::of(*opened) != FileIdentity::of(facts)) {
        failed(ELOOP);
    } else if (auto names = opened ? folder.names() : std::nullopt) {
        _levels.push_back(
            {.name = name, .facts = facts, .pending = std::move(*names), .handle = std::move(folder)});
        if (_levels.size() > openLevels + 1)
            _levels[_levels.size() - 1 - openLevels].handle.close();
        return;
    } else {
        error = error != 0 ? error : errno;
        folder.close();
        removeUnread(name, facts, error);
    }
    _path.truncate(parentLength);
}

// An empty folder goes even when it cannot be read.
void RemovalWalk::removeUnread(const QByteArray &name, const struct stat &facts, int error)
{
    if (_purpose == Purpose::remove && error == EACCES && handle(_levels.size() - 1).removeFolder(name))
        _report.freedBytes += qint64(facts.st_blocks) * blockSize;
    else if (error != ENOENT)
        problem(removalReason(error));
}

void RemovalWalk::leave()
{
    const Level level = std::move(_levels.back());
    _levels.pop_back();
    _path.truncate(_path.size() - level.name.size() - 1);
    if (level.keepsSomething) {
        keep();
        return;
    }
    if (_purpose == Purpose::rehearse)
        return;
    const FolderHandle *parent = innermost();
    if (!parent)
        return;
    const qsizetype length = _path.size();
    _path.append('/').append(level.name);
    if (parent->removeFolder(level.name))
        _report.freedBytes += qint64(level.facts.st_blocks) * blockSize;
    else if (errno != ENOENT)
        failed(errno);
    _path.truncate(length);
}

const FolderHandle *RemovalWalk::innermost()
{
    const size_t last = _levels.size() - 1;
    size_t from = last;
    while (from > 0 && !_levels[from].handle.isOpen())
        --from;
    // By their names from above, never by "..": that could lead out.
    for (size_t i = from + 1; i <= last; ++i) {
        FolderHandle opened = handle(i - 1).folder(_levels[i].name);
        const auto facts = opened.ownFacts();
        if (!facts || FileIdentity::of(*facts) != FileIdentity::of(_levels[i].facts)) {
            abandon(i);
            return nullptr;
        }
        _levels[i].handle = std::move(opened);
        if (i > from + openLevels)
            _levels[i - openLevels].handle.close();
    }
    return &handle(last);
}

// The folder has been moved away or exchanged: what is left in it stays.
void RemovalWalk::abandon(size_t level)
{
    while (_levels.size() > level + 1) {
        _path.truncate(_path.size() - _levels.back().name.size() - 1);
        _levels.pop_back();
    }
    const qsizetype parentLength = _path.size() - _levels.back().name.size() - 1;
    _levels.pop_back();
    failed(ELOOP);
    _path.truncate(parentLength);
}

const FolderHandle &RemovalWalk::handle(size_t level) const
{
    return level == 0 ? _root : _levels[level].handle;
}

void RemovalWalk::keep()
{
    _mustStay = true;
    _levels.back().keepsSomething = true;
}

void RemovalWalk::failed(int error)
{
    // The folder's own fault, told once for all that is in it.
    if (error == EACCES && _levels.size() > 1) {
        if (!std::exchange(_levels.back().isReported, true))
            add({_path.first(_path.lastIndexOf('/')), removalReason(error)});
        keep();
        return;
    }
    problem(removalReason(error));
}

void RemovalWalk::problem(const QString &reason)
{
    add({_path, reason});
    keep();
}

void RemovalWalk::add(RemovalProblem problem)
{
    RemovalReport one;
    one.problemCount = 1;
    one.problems.append(std::move(problem));
    _report.add(one);
}

} // namespace velbrix
