#include "maintenance/backup/BackupNames.h"

#include <QDir>
#include <QRegularExpression>
#include <QUuid>

using namespace Qt::StringLiterals;

namespace velbrix {
namespace {

const QString timeFormat = u"yyyyMMdd_HHmmss"_s;
const QString growingSuffix = u".partial"_s;
constexpr int longestPart = 190; // bytes, of the 255 that a name may have

QString inDestination(const BackupTask &task, const QString &name)
{
    return QDir::cleanPath(task.destPath + u'/' + name);
}

QString mirrorName(const BackupTask &task)
{
    return fileNamePart(task.name) + u"_同步"_s;
}

// Of this process: what it writes itself is no leftover.
QString process()
{
    static const QString id = QUuid::createUuid().toString(QUuid::Id128).first(8);
    return id;
}

// fromString() alone would take "2026 3 1_…", too.
std::optional<QDateTime> timeIn(const QString &text)
{
    const QDateTime time = QDateTime::fromString(text, timeFormat);
    return time.isValid() && time.toString(timeFormat) == text ? std::optional(time) : std::nullopt;
}

} // namespace

QString fileNamePart(const QString &name)
{
    QString part = name;
    for (QChar &c : part) {
        if (c == u'/' || c.category() == QChar::Other_Control)
            c = u'_';
    }
    while (part.toUtf8().size() > longestPart)
        part.chop(part.size() > 1 && part.back().isLowSurrogate() ? 2 : 1);
    return part;
}

QString archiveName(const BackupTask &task, const QDateTime &at)
{
    return fileNamePart(task.name) + u'_' + at.toString(timeFormat) + u".zip"_s;
}

std::optional<QDateTime> archiveTime(const BackupTask &task, const QString &fileName)
{
    const QString start = fileNamePart(task.name) + u'_';
    const QString end = u".zip"_s;
    if (!fileName.startsWith(start) || !fileName.endsWith(end) ||
        fileName.size() != start.size() + timeFormat.size() + end.size())
        return std::nullopt;
    return timeIn(fileName.sliced(start.size(), timeFormat.size()));
}

QString growingName(const QString &archiveName, const QString &installation)
{
    return u'.' + archiveName + u'.' + installation + u'-' + process() + growingSuffix;
}

bool isLeftGrowing(const QString &fileName, const QString &installation)
{
    static const QRegularExpression form(u"^\\..+\\.zip\\.([0-9a-f]+)-([0-9a-f]{8})\\.partial$"_s);
    const auto match = form.match(fileName);
    return match.hasMatch() && match.captured(1) == installation && match.captured(2) != process();
}

QString mirrorFolder(const BackupTask &task)
{
    return inDestination(task, mirrorName(task));
}

QString setAsideFolder(const BackupTask &task)
{
    return inDestination(task, mirrorName(task) + u"_旧文件"_s);
}

QString setAsideName(const QDateTime &at)
{
    return at.toString(timeFormat);
}

std::optional<QDateTime> setAsideTime(const QString &folderName)
{
    return timeIn(folderName);
}

} // namespace velbrix
