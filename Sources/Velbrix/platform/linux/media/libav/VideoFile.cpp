#include "platform/linux/media/libav/VideoFile.h"

#include <QFileInfo>

using namespace Qt::StringLiterals;

namespace velbrix {

QString notPlayableWords()
{
    return u"不是可播放的视频文件"_s;
}

Result<void> checkVideoFile(const QString &path)
{
    const QFileInfo file(path);
    if (!file.exists()) {
        // What stands for bytes that are no text finds no file.
        const bool isReadable = !path.contains(QChar::ReplacementCharacter);
        return failure(isReadable ? u"文件不存在"_s : u"文件名不是有效的 UTF-8 文字，请先给它改名"_s);
    }
    if (file.isDir())
        return failure(u"这是文件夹，不是视频文件"_s);
    if (!file.isFile())
        return failure(notPlayableWords()); // opening a pipe would wait for its writer
    if (!file.isReadable())
        return failure(u"没有读取权限"_s);
    if (file.size() == 0)
        return failure(u"文件是空的"_s);
    return {};
}

} // namespace velbrix
