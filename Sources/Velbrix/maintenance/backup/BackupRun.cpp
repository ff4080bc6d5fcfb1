#include "maintenance/backup/BackupRun.h"

#include "foundation/AtomicFile.h"
#include "foundation/Paths.h"
#include "foundation/Removal.h"

#include <QFile>
#include <QFileInfo>
#include <QThreadPool>

#include <algorithm>
#include <cerrno>
#include <sys/stat.h>
#include <unistd.h>

using namespace Qt::StringLiterals;

namespace velbrix {
namespace {

// Up to so many, or so large a part.
constexpr qint64 harmlessFiles = 50;
constexpr qint64 harmlessPercent = 20;

} // namespace

BackupOutcome BackupOutcome::cancelled(const QString &done)
{
    return {State::cancelled, u"已取消"_s + (done.isEmpty() ? done : u"（%1）"_s.arg(done))};
}

QCoro::Task<std::optional<BackupOutcome>> refusal(BackupRunRequest request, BackupDoubt doubt,
                                                  QString figures, QString notDone)
{
    if (!request.approve)
        co_return BackupOutcome::failed(figures + u"，已暂停；请手动运行并确认"_s);
    const bool isApproved = co_await request.approve(doubt);
    if (request.cancellation.isCancelled())
        co_return BackupOutcome::cancelled();
    if (!isApproved)
        co_return BackupOutcome::failed(figures + u"，未获确认，没有"_s + notDone);
    co_return std::nullopt;
}

qint64 harmlessLosses(qint64 existing)
{
    return std::max(harmlessFiles, existing * harmlessPercent / 100);
}

QThreadPool &backupWorkers()
{
    static auto *const pool = [] {
        auto *const made = new QThreadPool;
        // A disk that never answers keeps its thread; the others need theirs.
        made->setMaxThreadCount(8);
        return made;
    }();
    return *pool;
}

void removeOwn(const BackupTask &task, const QString &folder,
               const std::function<bool(const QString &)> &isOurs)
{
    const QByteArray canonical = canonicalPath(QFile::encodeName(folder));
    if (canonical.isEmpty())
        return;
    RemovalRules rules;
    rules.boundSockets = QSet<QByteArray>();
    // Documents or a whole disk may be a destination; what is removed there has a name of ours.
    rules.protectedPaths = protectedHostPaths();
    rules.protectedPaths.removeAll(canonical);
    if (const QByteArray source = canonicalPath(QFile::encodeName(task.sourcePath)); !source.isEmpty())
        rules.protectedPaths.append(source);
    rules.protectedPaths.removeAll(canonical);
    const RemovalRoot root(canonical, rules);
    if (!root.isOpen())
        return;
    for (const QByteArray &entry : root.entries()) {
        // Nothing that had to be guessed at; whichever normal form it has.
        const QString name = QFile::decodeName(entry);
        if (!name.contains(QChar::ReplacementCharacter) && isOurs(name))
            root.remove(entry, Cancellation());
    }
}

Result<void> publishFile(const QString &from, const QString &to)
{
    if (const int error = synced(from); error != 0)
        return failure(writeReason(error));
    QFile file(from);
    if (!file.rename(to))
        return failure(file.errorString());
    // The name survives a power cut only once its folder has reached the disk, too.
    (void)synced(QFileInfo(to).absolutePath());
    return {};
}

Result<void> makeFolder(const QString &path, mode_t mode)
{
    if (QFileInfo(path).isSymLink())
        return failure(u"“%1”是一个链接"_s.arg(path));
    if (::mkdir(QFile::encodeName(path).constData(), mode) == 0)
        return {};
    const int error = errno;
    const QFileInfo there(path);
    if (error == EEXIST && there.isDir() && !there.isSymLink())
        return {};
    return failure(writeReason(error));
}

} // namespace velbrix
