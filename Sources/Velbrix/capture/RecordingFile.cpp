#include "capture/RecordingFile.h"

#include "foundation/Text.h"

#include <QDir>
#include <QFileInfo>
#include <QStorageInfo>

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

Result<void> checkOutputFolder(const QString &folder)
{
    const QFileInfo info(folder);
    if (!info.exists() && folder == QDir::homePath() + u"/Desktop"_s)
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
