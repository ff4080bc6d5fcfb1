#include "maintenance/uninstall/RecordedTrash.h"

#include "maintenance/uninstall/DataSearch.h"
#include "maintenance/uninstall/UninstallJournal.h"
#include "platform/TrashCan.h"

#include <QCoroFuture>
#include <QPointer>
#include <QUuid>
#include <QtConcurrent/QtConcurrentRun>

using namespace Qt::StringLiterals;

namespace velbrix {

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
