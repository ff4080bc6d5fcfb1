#include "maintenance/uninstall/RecordedTrash.h"

#include "maintenance/uninstall/DataSearch.h"
#include "maintenance/uninstall/UninstallJournal.h"
#include "platform/TrashCan.h"

#include <QCoroFuture>
#include <QPointer>
#include <QUuid>
#include <QtConcurrent/QtConcurrentRun>

#include <ranges>

using namespace Qt::StringLiterals;

namespace velbrix {
namespace {

QString putBackMessage(const UninstallRecord &record, qsizetype failures)
{
    QStringList parts;
    if (const qsizetype restored = record.moved.size() - failures; restored > 0)
        parts << u"已将「%1」的 %2 项放回原处"_s.arg(record.name, QString::number(restored));
    if (failures > 0)
        parts << u"%1 项未能放回"_s.arg(failures);
    if (!record.removedPackage.isEmpty())
        parts << u"软件包 %1 不能放回，请重新安装"_s.arg(record.removedPackage);
    return parts.join(u"，"_s);
}

} // namespace

void RecordedTrash::begin(const AppInfo &app)
{
    _appPath = app.path;
    _record = {QUuid::createUuid().toString(QUuid::WithoutBraces), app.name, _clock.now(), {}, {}, {}};
    _isUnrecorded = false;
}

QCoro::Task<Result<void>> RecordedTrash::move(QString path)
{
    const QPointer self(this);
    // Known on disk before it goes: a kill in between must not lose it.
    _record.moved.append({path, {}});
    co_await remember();
    if (!self)
        co_return Result<void>();
    const Result<QString> trashed = co_await _trash.moveToTrash(path);
    if (!self)
        co_return Result<void>();
    bool isStillThere = false;
    if (!trashed || trashed->isEmpty()) {
        const QFuture<bool> asked = QtConcurrent::run(&uninstallWorkers(), isThere, path);
        isStillThere = co_await asked;
        if (!self)
            co_return Result<void>();
    }
    Result<void> result;
    if (trashed && !isStillThere)
        _record.moved.last().trashed = *trashed;
    else
        _record.moved.removeLast();
    if (isStillThere) {
        result = failure(trashed ? u"无法移入废纸篓"_s : trashed.error().message);
        fail(path, result.error().message);
    }
    co_await remember();
    co_return result;
}

QCoro::Task<> RecordedTrash::removed(QString package)
{
    _record.removedPackage = package;
    co_await remember();
}

QCoro::Task<> RecordedTrash::refuse(QStringList paths, QString reason)
{
    for (const QString &path : paths)
        fail(path, reason);
    if (!paths.isEmpty())
        co_await remember();
}

QCoro::Task<QString> RecordedTrash::putBack(UninstallRecord record)
{
    const QPointer self(this);
    UninstallRecord rest = record;
    for (const MovedItem &item : record.moved | std::views::reverse) {
        Result<void> restored = failure(u"不知道它在废纸篓中的位置"_s);
        if (!item.trashed.isEmpty())
            restored = co_await _trash.putBack(item.trashed, item.original);
        if (!self)
            co_return QString();
        if (!restored) {
            Q_EMIT failed({item.original, restored.error().message});
            continue;
        }
        rest.moved.removeOne(item);
        (void)co_await _journal.put(rest);
        if (!self)
            co_return QString();
        Q_EMIT recorded();
    }
    if (rest.moved.isEmpty() && !record.moved.isEmpty())
        (void)co_await _journal.remove(record.id);
    if (!self)
        co_return QString();
    Q_EMIT recorded();
    co_return putBackMessage(record, rest.moved.size());
}

QCoro::Task<> RecordedTrash::remember()
{
    const QPointer self(this);
    const Result<void> written = co_await _journal.put(_record);
    if (!self)
        co_return;
    if (!written && !_isUnrecorded) {
        _isUnrecorded = true;
        fail(_appPath, u"卸载记录未能保存，退出后无法放回原处："_s + written.error().message);
    }
    Q_EMIT recorded();
}

void RecordedTrash::fail(const QString &path, const QString &reason)
{
    _record.failed.append({path, reason});
    Q_EMIT failed({path, reason});
}

} // namespace velbrix
