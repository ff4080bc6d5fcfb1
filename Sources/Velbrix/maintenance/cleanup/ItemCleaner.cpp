#include "maintenance/cleanup/ItemCleaner.h"

#include "foundation/Paths.h"
#include "foundation/Text.h"
#include "platform/AdminShell.h"
#include "platform/TrashCan.h"

#include <QCoroFuture>
#include <QFile>
#include <QFileInfo>
#include <QtConcurrent/QtConcurrentRun>

#include <algorithm>

using namespace Qt::StringLiterals;

namespace velbrix {
namespace {

bool isCleanable(const QByteArray &name)
{
    return !name.startsWith('.') || name == ".DS_Store";
}

struct KeptPath {
    QByteArray path; // canonical
    QString why;
};

// What stays inside the emptied folders, by its real name, for a link may lead
// into them. What is emptied itself cannot be kept.
QList<KeptPath> keptInside(const CleanupBounds &bounds)
{
    QList<QByteArray> emptied;
    for (const QString &folder : bounds.folders)
        emptied.append(canonicalPath(QFile::encodeName(folder)));
    QList<KeptPath> all;
    for (const KeptFolder &kept : bounds.kept)
        all.append({canonicalPath(QFile::encodeName(kept.folder)), kept.why});
    for (const QByteArray &entry : bounds.excluded)
        all.append({entry, u"你排除的条目"_s});
    all.removeIf([&](const KeptPath &kept) {
        return std::ranges::none_of(emptied,
                                    [&](const QByteArray &folder) { return isInside(kept.path, folder); });
    });
    return all;
}

// One of the folders that are emptied.
class EmptiedFolder {
public:
    EmptiedFolder(const QString &folder, const CleanupBounds &bounds, const QList<KeptPath> &kept)
        : root(QFile::encodeName(folder), rulesWith(bounds.rules, kept)), _kept(kept)
    {
        const QByteArray native = QFile::encodeName(folder);
        if (!QFileInfo::exists(folder)) // a missing folder is an empty one
            return;
        if (bounds.areOthers && root.canonicalPath() != native)
            return;
        if (QFileInfo(folder).isSymbolicLink() && !bounds.isTrash) {
            // Within the item itself it adds nothing.
            if (!bounds.folders.contains(QFile::decodeName(root.canonicalPath())))
                obstacle = u"是一个链接，指向 %1，不会清理；要清理那里，请把它添加为自定义文件夹"_s.arg(
                    QFile::decodeName(root.canonicalPath()));
            return;
        }
        if (!root.isOpen()) {
            obstacle = RemovalRoot::obstacle(native, bounds.rules);
            return;
        }
        names = root.entries();
        if (!bounds.isTrash)
            names.removeIf([](const QByteArray &name) { return !isCleanable(name); });
    }

    QByteArray pathOf(const QByteArray &name) const { return root.canonicalPath() + '/' + name; }
    // What in the entry stays; null when nothing does.
    const KeptPath *keptIn(const QByteArray &name) const
    {
        const QByteArray path = pathOf(name);
        const auto found =
            std::ranges::find_if(_kept, [&](const KeptPath &kept) { return isWithin(kept.path, path); });
        return found == _kept.end() ? nullptr : &*found;
    }
    // Why the entry stays for what keptIn() told.
    QString whyStays(const QByteArray &name, const KeptPath &kept) const
    {
        return kept.path == pathOf(name) ? kept.why : u"里面有保留的内容（%1）"_s.arg(kept.why);
    }

    RemovalRoot root;
    QList<QByteArray> names; // of the entries that are not hidden
    QString obstacle;        // why it is not emptied

private:
    static RemovalRules rulesWith(RemovalRules rules, const QList<KeptPath> &kept)
    {
        for (const KeptPath &place : kept)
            rules.protectedPaths.append(place.path);
        return rules;
    }

    const QList<KeptPath> &_kept;
};

// Blocking; for a thread of its own.
Cleaned emptyFolders(const CleanupBounds &bounds, const Cancellation &work)
{
    const QList<KeptPath> kept = keptInside(bounds);
    Cleaned cleaned;
    for (const QString &folder : bounds.folders) {
        const EmptiedFolder emptied(folder, bounds, kept);
        if (!emptied.obstacle.isEmpty())
            cleaned.removal.add({0, 0, {{QFile::encodeName(folder), emptied.obstacle}}, 1});
        for (const QByteArray &name : emptied.names) {
            if (const KeptPath *const place = emptied.keptIn(name)) {
                // That a place itself is kept is no news.
                if (const QByteArray path = emptied.pathOf(name); place->path != path)
                    cleaned.kept.append({QFile::decodeName(path), emptied.whyStays(name, *place)});
                continue;
            }
            if (work.isCancelled())
                return cleaned;
            if (!emptied.root.mayGo(name))
                continue;
            cleaned.ownBytes += emptied.root.ownSize(name);
            cleaned.removal.add(emptied.root.remove(name, work));
            ++cleaned.count;
        }
    }
    return cleaned;
}

// What the program said last, or at least its status.
QString failureOf(const ProcessOutcome &outcome)
{
    if (outcome.cancelled)
        return u"已取消"_s;
    const QString said = QString::fromLocal8Bit(outcome.errorOutput).trimmed().section(u'\n', -1).trimmed();
    return said.isEmpty() ? u"命令返回错误 %1"_s.arg(outcome.exitCode) : oneLine(said);
}

} // namespace

QThreadPool &cleanupThreads()
{
    static auto *const pool = new QThreadPool;
    return *pool;
}

CleanableEntries cleanableEntries(const CleanupBounds &bounds)
{
    const QList<KeptPath> kept = keptInside(bounds);
    CleanableEntries found;
    for (const QString &folder : bounds.folders) {
        const EmptiedFolder emptied(folder, bounds, kept);
        if (!emptied.obstacle.isEmpty())
            found.problem = emptied.obstacle;
        for (const QByteArray &name : emptied.names) {
            const KeptPath *const place = emptied.keptIn(name);
            if (!place && !emptied.root.mayGo(name))
                ++found.notOldEnough;
            else
                found.entries.append(
                    {emptied.pathOf(name), place ? emptied.whyStays(name, *place) : QString()});
        }
    }
    return found;
}

void Cleaned::add(const Cleaned &other)
{
    count += other.count;
    ownBytes += other.ownBytes;
    removal.add(other.removal);
    kept += other.kept;
}

QCoro::Task<Cleaned> ItemCleaner::clean(CleanupRule rule, CleanupBounds bounds, Cancellation work)
{
    if (rule.item.id == trashItemId)
        co_return co_await emptyTrash(bounds.rules, work);
    if (rule.target.command)
        co_return co_await runCommand(rule.target, work);
    auto emptying = QtConcurrent::run(&cleanupThreads(), emptyFolders, bounds, work);
    co_return co_await emptying;
}

QCoro::Task<Cleaned> ItemCleaner::emptyTrash(RemovalRules rules, Cancellation work)
{
    const auto emptied = co_await _ports.trash.empty(rules, work);
    Cleaned cleaned = {.count = 1};
    if (emptied)
        cleaned.removal = *emptied;
    else
        cleaned.failure = emptied.error().message;
    co_return cleaned;
}

QCoro::Task<Cleaned> ItemCleaner::runCommand(CleanupTarget target, Cancellation work)
{
    const QString command = target.command.value_or(QString());
    Result<ProcessOutcome> outcome = failure(QString());
    if (target.requiresAdmin) {
        outcome = co_await _ports.admin.run(command, work);
    } else {
        ProcessRequest request;
        request.program = u"/bin/bash"_s;
        request.arguments = {u"-c"_s, command};
        request.cancellation = work;
        outcome = co_await _processes.run(request);
    }
    Cleaned cleaned = {.count = 1, .isMeasured = false};
    if (!outcome)
        cleaned.failure = outcome.error().message;
    else if (!outcome->succeeded())
        cleaned.failure = failureOf(*outcome);
    co_return cleaned;
}

} // namespace velbrix
