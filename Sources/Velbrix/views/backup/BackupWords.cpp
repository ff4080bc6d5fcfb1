#include "views/backup/BackupWords.h"

using namespace Qt::StringLiterals;

namespace velbrix {

QString kindName(BackupTaskKind kind)
{
    return kind == BackupTaskKind::backup ? u"压缩备份"_s : u"文件夹同步"_s;
}

QString kindLine(BackupTaskKind kind)
{
    return kind == BackupTaskKind::backup ? u"定时压缩文件夹 · 自动归档到指定位置"_s
                                          : u"到期创建同步文件夹 · 增量复制源文件结构"_s;
}

QString kindSymbol(BackupTaskKind kind)
{
    return kind == BackupTaskKind::backup ? u"archivebox"_s : u"arrow.triangle.2.circlepath"_s;
}

QString whenText(const QDateTime &at, const QDateTime &now)
{
    const QString time = at.toString(u" HH:mm"_s);
    switch (now.date().daysTo(at.date())) {
    case -1:
        return u"昨天"_s + time;
    case 0:
        return u"今天"_s + time;
    case 1:
        return u"明天"_s + time;
    default:
        return at.toString(at.date().year() == now.date().year() ? u"M 月 d 日"_s : u"yyyy 年 M 月 d 日"_s) +
               time;
    }
}

QString planText(const BackupTask &task, const QDateTime &now)
{
    const QString schedule = scheduleText(task.schedule);
    if (!task.isEnabled)
        return schedule + u" · 已停用，不会自动运行"_s;
    if (!task.nextRunAt.isValid())
        return schedule;
    return task.nextRunAt <= now ? schedule + u" · 即将运行"_s
                                 : u"%1 · 下次运行 %2"_s.arg(schedule, whenText(task.nextRunAt, now));
}

} // namespace velbrix
