#include "maintenance/backup/BackupNotifications.h"

#include <algorithm>

using namespace Qt::StringLiterals;

namespace velbrix {
namespace {

constexpr qint64 patienceSecs = 3LL * 24 * 3600; // a disk may be away over a weekend

UserNotification notification(const BackupTask &task, const QString &title, const QString &body)
{
    return {u"velbrix.backup."_s + task.id, title, body};
}

// The figures in a message change from day to day; what it says does not.
QString withoutFigures(QString message)
{
    message.removeIf([](QChar c) { return c.isDigit() || c == u'.'; });
    return message;
}

} // namespace

std::optional<UserNotification> failureNotification(BackupTask &task, const QDateTime &due,
                                                    const QDateTime &now)
{
    if (!task.failingSince)
        task.failingSince = std::min(due, now);
    const QString message = task.lastResult.value_or(QString());
    const bool isTold = withoutFigures(message) == task.toldFailure;
    task.toldFailure = withoutFigures(message);
    if (const auto delay = delayNotification(task, now))
        return delay;
    if (isTold)
        return std::nullopt;
    return notification(task, u"“%1”没有完成"_s.arg(task.name), message);
}

std::optional<UserNotification> partialNotification(BackupTask &task)
{
    const QString message = task.lastResult.value_or(QString());
    const bool isTold = withoutFigures(message) == task.toldFailure;
    forgetFailures(task);
    task.toldFailure = withoutFigures(message);
    if (isTold)
        return std::nullopt;
    return notification(task, u"“%1”有文件没有备份"_s.arg(task.name), message);
}

std::optional<UserNotification> delayNotification(BackupTask &task, const QDateTime &now)
{
    if (!task.isEnabled || !task.failingSince || task.toldOverdue ||
        task.failingSince->secsTo(now) <= patienceSecs)
        return std::nullopt;
    task.toldOverdue = true;
    return notification(task,
                        u"“%1”已逾期 %2 天"_s.arg(task.name, QString::number(task.failingSince->daysTo(now))),
                        task.lastResult.value_or(QString()));
}

void forgetFailures(BackupTask &task)
{
    task.failingSince.reset();
    task.toldFailure.clear();
    task.toldOverdue = false;
}

} // namespace velbrix
