#include "maintenance/backup/SetAside.h"

#include "foundation/AtomicFile.h"
#include "maintenance/backup/BackupNames.h"
#include "maintenance/backup/BackupRun.h"

#include <QDir>
#include <QFile>
#include <QFileInfo>
#include <QHash>

#include <unistd.h>

using namespace Qt::StringLiterals;

namespace velbrix {
namespace {

constexpr int keptDays = 30; // the page promises it

// A clock that is wrong today must cost nothing: what is old is noted, and goes when
// a run on a later day finds it old as well.
void expire(const BackupTask &task, const QDateTime &now)
{
    const QString folder = setAsideFolder(task);
    if (QFileInfo(folder).isSymLink())
        return;
    const QString notes = folder + u"/.expired"_s;
    QHash<QString, QDate> noted;
    if (QFile file(notes); file.open(QIODevice::ReadOnly)) {
        for (const QByteArray &line : file.readAll().split('\n'))
            noted.insert(QString::fromUtf8(line.left(line.indexOf(' '))),
                         QDate::fromString(QString::fromUtf8(line.mid(line.indexOf(' ') + 1)), Qt::ISODate));
    }
    QByteArray stillOld;
    removeOwn(task, folder, [&](const QString &name) {
        const auto at = setAsideTime(name);
        if (!at || at->daysTo(now) <= keptDays)
            return false;
        const QDate since = noted.value(name);
        if (since.isValid() && since < now.date())
            return true;
        stillOld += name.toUtf8() + ' ' + now.date().toString(Qt::ISODate).toUtf8() + '\n';
        return false;
    });
    if (stillOld.isEmpty())
        QFile::remove(notes);
    else
        (void)replaceFile(notes, stillOld);
}

} // namespace

QString setAsideObstacle(const BackupTask &task)
{
    const QFileInfo folder(setAsideFolder(task));
    if (!task.setsAside)
        return {};
    if (folder.isSymLink())
        return u"“%1”是一个链接"_s.arg(folder.filePath());
    if (folder.exists() && !folder.isDir())
        return u"已有同名的文件“%1”，被删除和替换的文件无处保留"_s.arg(folder.filePath());
    return {};
}

QString freeSetAsideFolder(const BackupTask &task, QDateTime at)
{
    const QDir folder(setAsideFolder(task));
    while (folder.exists(setAsideName(at)))
        at = at.addSecs(1);
    return folder.filePath(setAsideName(at));
}

void tidySetAside(const BackupTask &task, const QString &setAside, const QDateTime &at, bool isDone)
{
    if (isDone)
        expire(task, at);
    for (const QString &folder : {setAside, QFileInfo(setAside).path()})
        ::rmdir(QFile::encodeName(folder).constData());
}

} // namespace velbrix
