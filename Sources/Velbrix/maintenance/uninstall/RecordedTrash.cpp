#include "maintenance/uninstall/RecordedTrash.h"

#include "maintenance/uninstall/DataSearch.h"
#include "maintenance/uninstall/ItemIdentity.h"
#include "maintenance/uninstall/UninstallJournal.h"
#include "platform/TrashCan.h"

#include <QCoroFuture>
#include <QPointer>
#include <QUuid>
#include <QtConcurrent/QtConcurrentRun>

#include <algorithm>
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

struct Whereabouts {
    bool isStillThere = false;
    QString identity; // of what lies in the trash
};

Whereabouts whereabouts(const QString &path, const QString &trashed)
{
    return {isThere(path), trashed.isEmpty() ? QString() : itemIdentity(trashed)};
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
    Result<void> result = co_await enter();
    if (!self)
        co_return Result<void>();
    if (!result) {
        result = failure(u"卸载记录未能保存，没有移动："_s + result.error().message);
        _record.moved.removeLast();
        fail(path, result.error().message);
        (void)co_await enter();
        co_return result;
    }
    const Result<QString> trashed = co_await _trash.moveToTrash(path);
    if (!self)
        co_return Result<void>();
    const QString place = trashed.value_or(QString());
    const QFuture<Whereabouts> asked = QtConcurrent::run(&uninstallWorkers(), whereabouts, path, place);
    const Whereabouts found = co_await asked;
    if (!self)
        co_return Result<void>();
    const bool isStillThere = found.isStillThere && place.isEmpty();
    if (trashed && !isStillThere)
        _record.moved.last() = {path, place, found.identity};
    else
        _record.moved.removeLast();
    if (isStillThere) {
        result = failure(trashed ? u"无法移入废纸篓"_s : trashed.error().message);
        fail(path, result.error().message);
    }
    co_await remember();
    co_return result;
}

QCoro::Task<> RecordedTrash::takeBack(QString path)
{
    const QPointer self(this);
    const auto moved = std::ranges::find(_record.moved, path, &MovedItem::original);
    if (moved == _record.moved.end())
        co_return;
    const MovedItem item = *moved;
    const Result<void> restored = co_await restore(item);
    if (!self)
        co_return;
    if (restored)
        _record.moved.removeOne(item);
    else
        fail(path, u"没有放回原处，仍在废纸篓里："_s + restored.error().message);
    co_await remember();
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

QCoro::Task<Result<void>> RecordedTrash::restore(MovedItem item)
{
    const QPointer self(this);
    if (item.trashed.isEmpty())
        co_return failure(u"不知道它在废纸篓中的位置"_s);
    // The trash may have been emptied, and the name have been given again.
    const QFuture<QString> asked = QtConcurrent::run(&uninstallWorkers(), itemIdentity, item.trashed);
    const QString now = co_await asked;
    if (!self)
        co_return Result<void>();
    if (!isSameItem(item.identity, now))
        co_return failure(u"废纸篓里同名的项目不是当时移走的那一个"_s);
    const Result<void> restored = co_await _trash.putBack(item.trashed, item.original);
    co_return restored;
}

QCoro::Task<QString> RecordedTrash::putBack(UninstallRecord record)
{
    const QPointer self(this);
    UninstallRecord rest = record;
    Result<void> written;
    for (const MovedItem &item : record.moved | std::views::reverse) {
        const Result<void> restored = co_await restore(item);
        if (!self)
            co_return QString();
        if (!restored) {
            Q_EMIT failed({item.original, restored.error().message});
            continue;
        }
        rest.moved.removeOne(item);
        if (rest.moved.isEmpty())
            rest.removedPackage.clear();
        written = co_await _journal.put(rest);
        if (!self)
            co_return QString();
        Q_EMIT recorded();
    }
    if (!written)
        Q_EMIT failed({record.name, u"卸载记录未能更新："_s + written.error().message});
    co_return putBackMessage(record, rest.moved.size());
}

QCoro::Task<Result<void>> RecordedTrash::enter()
{
    const QPointer self(this);
    const Result<void> written = co_await _journal.put(_record);
    if (self)
        Q_EMIT recorded();
    co_return written;
}

QCoro::Task<> RecordedTrash::remember()
{
    const QPointer self(this);
    const Result<void> written = co_await enter();
    if (!self || written || _isUnrecorded)
        co_return;
    _isUnrecorded = true;
    fail(_appPath, u"卸载记录未能保存，退出后无法放回原处："_s + written.error().message);
}

void RecordedTrash::fail(const QString &path, const QString &reason)
{
    _record.failed.append({path, reason});
    Q_EMIT failed({path, reason});
}

} // namespace velbrix
