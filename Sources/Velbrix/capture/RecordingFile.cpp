#include "capture/RecordingFile.h"

#include "foundation/Text.h"

#include <QDir>
#include <QFile>
#include <QFileInfo>
#include <QStandardPaths>
#include <QStorageInfo>

#include <algorithm>

using namespace Qt::StringLiterals;

namespace velbrix {
namespace {

// About a minute of the densest recording; below that a start is a promise
// that cannot be kept.
constexpr qint64 leastFreeBytes = 300'000'000;
constexpr qint64 smallestGoodMovie = 10'001;
constexpr double shortestGoodMovie = 0.05;

} // namespace

QString recordingFileName(const QDateTime &start)
{
    return start.toString(u"'录制_'yyyyMMdd_HHmmss'.mp4'"_s);
}

QString desktopFolder()
{
    return QStandardPaths::writableLocation(QStandardPaths::DesktopLocation);
}

Result<void> checkOutputFolder(const QString &folder)
{
    const QFileInfo info(folder);
    if (!info.exists() && folder == desktopFolder())
        QDir().mkpath(folder);
    const QFileInfo now(folder);
    if (!now.exists())
        return failure(u"输出目录不存在，请重新选择：%1"_s.arg(folder));
    if (!now.isDir())
        return failure(u"输出目录不是文件夹，请重新选择：%1"_s.arg(folder));
    const QStorageInfo storage(folder);
    if (storage.isReadOnly())
        return failure(u"磁盘是只读的，请换一个输出目录：%1"_s.arg(folder));
    if (!now.isWritable())
        return failure(u"没有写入权限，请换一个输出目录：%1"_s.arg(folder));
    if (storage.isValid() && storage.bytesAvailable() < leastFreeBytes)
        return failure(u"磁盘空间不足：剩余 %1，至少需要 %2"_s.arg(formatByteCount(storage.bytesAvailable()),
                                                                   formatByteCount(leastFreeBytes)));
    return {};
}

Result<QString> renameMovie(const QString &path, const QString &name)
{
    constexpr qsizetype longestName = 255; // bytes, on every common file system
    const QFileInfo file(path);
    const QString extension = u'.' + file.suffix();
    QString wanted = name.trimmed();
    if (!wanted.endsWith(extension, Qt::CaseInsensitive))
        wanted += extension;
    if (wanted.size() == extension.size())
        return failure(u"请输入名称"_s);
    const auto isControl = [](QChar character) { return character.category() == QChar::Other_Control; };
    if (wanted.contains(u'/') || wanted.startsWith(u'.') || std::ranges::any_of(wanted, isControl))
        return failure(u"名称不能以点开头，也不能包含 / 或换行"_s);
    if (QFile::encodeName(wanted).size() > longestName)
        return failure(u"名称太长"_s);
    if (wanted == file.fileName())
        return path;
    const QString renamed = file.dir().filePath(wanted);
    if (QFileInfo::exists(renamed) || QFileInfo(renamed).isSymLink())
        return failure(u"这里已经有“%1”"_s.arg(wanted));
    QFile movie(path);
    if (!movie.rename(renamed))
        return failure(u"没有改名：%1"_s.arg(movie.errorString()));
    return renamed;
}

MovieVerdict judgeMovie(const MovieFacts &facts, const QString &fileName, qint64 bytes, bool systemMode)
{
    if (facts.isPlayable && facts.duration > shortestGoodMovie && bytes >= smallestGoodMovie) {
        return {true,
                u"可播放 duration=%1 %2 size=%3"_s.arg(facts.duration, 0, 'f', 2).arg(fileName).arg(bytes)};
    }
    return {false, u"不可播放 playable=%1 duration=%2 size=%3 mode=%4"_s
                       .arg(facts.isPlayable ? u"true"_s : u"false"_s)
                       .arg(facts.duration, 0, 'f', 3)
                       .arg(bytes)
                       .arg(systemMode ? u"system"_s : u"manual"_s)};
}

} // namespace velbrix
