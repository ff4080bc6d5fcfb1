#include "maintenance/backup/ArchiveRestorer.h"

#include "foundation/SettingsStore.h"
#include "maintenance/backup/BackupRun.h"
#include "platform/Archiver.h"

#include <QCoroFuture>
#include <QDir>
#include <QFileInfo>
#include <QJsonArray>
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
    QString folder;    // must be there
    QString unpacking; // the hidden folder in it to unpack into; must not be there
    std::function<void(const QString &line, double share)> progress = [](const QString &, double) {};
    Cancellation cancellation;
};

const QString journalKey = u"Velbrix_FileBackupRestores"_s;

// No archive has this name in it: it is drawn anew each time.
QString newUnpackingPath(const QString &folder)
{
    const QString name = u".velbrix-restore-"_s + QUuid::createUuid().toString(QUuid::Id128);
    return QDir(folder).absoluteFilePath(name);
}

void removeUnpacking(const QString &path)
{
    const QFileInfo unpacking(path);
    removeOwn({}, unpacking.path(), [&](const QString &name) { return name == unpacking.fileName(); });
}

// Those that are left: where the disk is away, nobody knows.
QStringList removeRecorded(QStringList paths)
{
    static const QRegularExpression ours(u"/\\.velbrix-restore-[0-9a-f]{32}$"_s);
    paths.removeIf([](const QString &path) {
        if (!ours.match(path).hasMatch())
            return true;
        removeUnpacking(path);
        return QFileInfo(QFileInfo(path).path()).isDir() && !QFileInfo::exists(path);
    });
    return paths;
}

Result<void> prepare(const QString &archive, const QString &folder, const QString &unpacking)
{
    if (!QFileInfo(archive).isFile())
        return failure(u"归档不存在：%1"_s.arg(archive));
    if (!QFileInfo(folder).isDir())
        return failure(u"目标文件夹不存在：%1"_s.arg(folder));
    if (const auto made = makeFolder(unpacking, S_IRWXU); !made)
        return failure(u"无法写入目标文件夹：%1"_s.arg(made.error().message));
    return {};
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
        removeUnpacking(unpacking);
    return target.filePath(name);
}

// Unpacks an archive into a new folder inside the chosen one, or leaves nothing
// there. Main thread; the archiver must outlive the run.
QCoro::Task<BackupOutcome> restoreArchive(Archiver &archiver, RestoreRequest request)
{
    request.progress(u"正在校验归档…"_s, -1);
    const QFuture<Result<void>> preparing =
        QtConcurrent::run(&backupWorkers(), prepare, request.archive, request.folder, request.unpacking);
    const Result<void> prepared = co_await preparing;
    if (!prepared)
        co_return BackupOutcome::failed(u"恢复失败："_s + prepared.error().message);
    Result<void> done;
    if (!request.cancellation.isCancelled())
        done = co_await archiver.test(request.archive, request.cancellation);
    if (done && !request.cancellation.isCancelled()) {
        request.progress(u"正在解压…"_s, -1);
        ExtractRequest extract{.archive = request.archive,
                               .folder = request.unpacking,
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
            QtConcurrent::run(&backupWorkers(), reveal, request.archive, request.folder, request.unpacking);
        shown = co_await revealing;
    }
    if (shown)
        co_return BackupOutcome::done(u"✓ 已恢复到 "_s + *shown);
    const QFuture<void> removal = QtConcurrent::run(&backupWorkers(), removeUnpacking, request.unpacking);
    co_await removal;
    if (request.cancellation.isCancelled())
        co_return BackupOutcome::cancelled();
    co_return BackupOutcome::failed(u"恢复失败："_s + shown.error().message);
}

} // namespace

ArchiveRestorer::ArchiveRestorer(Archiver &archiver, SettingsStore &settings)
    : _archiver(archiver), _settings(settings)
{
    if (!recorded().isEmpty())
        removeLeftovers();
}

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
    RestoreRequest request{.archive = archive,
                           .folder = folder,
                           .unpacking = newUnpackingPath(folder),
                           .cancellation = _cancellation};
    record(recorded() << request.unpacking);
    (void)_settings.flush();
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
    removeLeftovers();
    _isRestoring = false;
}

// Also takes off the record what has ended well.
QCoro::Task<> ArchiveRestorer::removeLeftovers()
{
    const QPointer self(this);
    const QStringList before = recorded();
    const QFuture<QStringList> removal = QtConcurrent::run(&backupWorkers(), removeRecorded, before);
    const QStringList left = co_await removal;
    if (!self)
        co_return;
    QStringList paths = recorded();
    paths.removeIf([&](const QString &path) { return before.contains(path) && !left.contains(path); });
    record(paths);
}

QStringList ArchiveRestorer::recorded() const
{
    QStringList paths;
    const QJsonArray list = _settings.json(journalKey).value_or(QJsonArray()).toArray();
    for (const auto &path : list)
        paths.append(path.toString());
    return paths;
}

void ArchiveRestorer::record(const QStringList &unpacking)
{
    if (unpacking.isEmpty())
        _settings.remove(journalKey);
    else
        _settings.set(journalKey, QJsonArray::fromStringList(unpacking));
}

} // namespace velbrix
