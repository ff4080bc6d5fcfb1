#include "maintenance/backup/ArchiveRestorer.h"

#include "maintenance/backup/BackupRun.h"
#include "platform/Archiver.h"

#include <QCoroFuture>
#include <QDir>
#include <QFileInfo>
#include <QPointer>
#include <QRegularExpression>
#include <QUuid>
#include <QtConcurrent/QtConcurrentRun>

#include <functional>
#include <sys/stat.h>
#include <utility>

using namespace Qt::StringLiterals;

namespace velbrix {
namespace {

struct RestoreRequest {
    QString archive;
    QString folder; // must be there
    std::function<void(const QString &line, double share)> progress = [](const QString &, double) {};
    Cancellation cancellation;
};

const QString unpackingPrefix = u".velbrix-restore-"_s;

void removeUnpacking(const QString &folder, const QString &unpacking)
{
    removeOwn({}, folder, [&](const QString &name) { return name == unpacking; });
}

// The path of the hidden folder to unpack into. What a killed restore has left goes.
Result<QString> prepare(const QString &archive, const QString &folder)
{
    if (!QFileInfo(archive).isFile())
        return failure(u"归档不存在：%1"_s.arg(archive));
    if (!QFileInfo(folder).isDir())
        return failure(u"目标文件夹不存在：%1"_s.arg(folder));
    static const QRegularExpression ours(u"^\\.velbrix-restore-[0-9a-f]{32}$"_s);
    removeOwn({}, folder, [&](const QString &name) { return ours.match(name).hasMatch(); });
    const QString path = QDir(folder).filePath(unpackingPrefix + QUuid::createUuid().toString(QUuid::Id128));
    if (const auto made = makeFolder(path, S_IRWXU); !made)
        return failure(u"无法写入目标文件夹：%1"_s.arg(made.error().message));
    return path;
}

QString freeName(const QDir &folder, const QString &name)
{
    // A link that leads nowhere occupies its name, too.
    const auto isTaken = [&](const QString &candidate) {
        const QFileInfo there(folder.filePath(candidate));
        return there.exists() || there.isSymLink();
    };
    QString candidate = name;
    for (int n = 2; isTaken(candidate); ++n)
        candidate = u"%1 %2"_s.arg(name, QString::number(n));
    return candidate;
}

// A folder that may not be written cannot be moved into another one either.
bool move(const QString &from, const QString &to)
{
    const QFileInfo moved(from);
    const QFile::Permissions permissions = moved.permissions();
    const bool isLocked = moved.isDir() && !moved.isSymLink() && !permissions.testFlag(QFile::WriteOwner);
    if (isLocked)
        QFile::setPermissions(from, permissions | QFile::WriteOwner);
    const bool isMoved = QDir().rename(from, to);
    if (isLocked)
        QFile::setPermissions(isMoved ? to : from, permissions);
    return isMoved;
}

// Moves what was unpacked to its name; the path of the result.
Result<QString> reveal(const QString &archive, const QString &folder, const QString &unpacking)
{
    const QDir inside(unpacking);
    const QStringList entries =
        inside.entryList(QDir::AllEntries | QDir::NoDotAndDotDot | QDir::Hidden | QDir::System);
    const QDir target(folder);
    // An archive of a folder has one entry, a foreign one may have any number.
    const bool isOne = entries.size() == 1;
    const QString name = freeName(target, isOne ? entries.first() : QFileInfo(archive).completeBaseName());
    if (!move(isOne ? inside.filePath(entries.first()) : unpacking, target.filePath(name)))
        return failure(u"无法重命名为“%1”"_s.arg(name));
    if (isOne)
        removeUnpacking(folder, inside.dirName());
    return target.filePath(name);
}

// Unpacks an archive into a new folder inside the chosen one, or leaves nothing
// there. Main thread; the archiver must outlive the run.
QCoro::Task<BackupOutcome> restoreArchive(Archiver &archiver, RestoreRequest request)
{
    request.progress(u"正在校验归档…"_s, -1);
    const QFuture<Result<QString>> preparing =
        QtConcurrent::run(&backupWorkers(), prepare, request.archive, request.folder);
    const Result<QString> unpacking = co_await preparing;
    if (!unpacking)
        co_return BackupOutcome::failed(u"恢复失败："_s + unpacking.error().message);
    Result<void> done;
    if (!request.cancellation.isCancelled())
        done = co_await archiver.test(request.archive, request.cancellation);
    if (done && !request.cancellation.isCancelled()) {
        request.progress(u"正在解压…"_s, -1);
        ExtractRequest extract{.archive = request.archive,
                               .folder = *unpacking,
                               .progress =
                                   [&request](const ArchiveProgress &so) {
                                       request.progress(u"正在解压：%1 个文件"_s.arg(so.files), -1);
                                   },
                               .cancellation = request.cancellation};
        done = co_await archiver.extract(std::move(extract));
    }
    Result<QString> shown = failure(done ? QString() : done.error().message);
    if (done && !request.cancellation.isCancelled()) {
        const QFuture<Result<QString>> revealing =
            QtConcurrent::run(&backupWorkers(), reveal, request.archive, request.folder, *unpacking);
        shown = co_await revealing;
    }
    if (shown)
        co_return BackupOutcome::done(u"✓ 已恢复到 "_s + *shown);
    const QFuture<void> removal = QtConcurrent::run(&backupWorkers(), removeUnpacking, request.folder,
                                                    QFileInfo(*unpacking).fileName());
    co_await removal;
    if (request.cancellation.isCancelled())
        co_return BackupOutcome::cancelled();
    co_return BackupOutcome::failed(u"恢复失败："_s + shown.error().message);
}

} // namespace

void ArchiveRestorer::restore(const QString &archive, const QString &intoFolder)
{
    if (!_isRestoring)
        run(archive, intoFolder);
}

void ArchiveRestorer::cancel()
{
    _cancellation.cancel();
}

QCoro::Task<> ArchiveRestorer::run(QString archive, QString folder)
{
    const QPointer self(this);
    _cancellation = Cancellation();
    _result = QString();
    _isRestoring = true;
    RestoreRequest request{.archive = archive, .folder = folder, .cancellation = _cancellation};
    request.progress = [self](const QString &line, double) {
        if (self)
            self->_progress = line;
    };
    const BackupOutcome outcome = co_await restoreArchive(_archiver, std::move(request));
    if (!self)
        co_return;
    _progress = QString();
    _hasSucceeded = outcome.state == BackupOutcome::State::done;
    _result = outcome.message;
    _isRestoring = false;
}

} // namespace velbrix
