#include "wallpaper/PictureFiles.h"

#include "foundation/AtomicFile.h"

#include <QDateTime>
#include <QDir>
#include <QFileInfo>
#include <QRegularExpression>

#include <algorithm>

using namespace Qt::StringLiterals;

namespace velbrix {
namespace {

constexpr int quality = 92; // compression factor 0.92

// The time in the name is that of the creation, which the file system may
// not know.
qint64 creationTime(const QFileInfo &file)
{
    static const QRegularExpression pattern(u"^static_(\\d+)\\.jpg$"_s);
    const auto match = pattern.match(file.fileName());
    return match.hasMatch() ? match.captured(1).toLongLong() : file.lastModified().toMSecsSinceEpoch();
}

// The newest file is the newest whatever the clock says.
void prune(const QString &folder, const QString &newest)
{
    QFileInfoList pictures = QDir(folder).entryInfoList(QDir::Files | QDir::Hidden);
    pictures.removeIf([&newest](const QFileInfo &file) {
        return file.suffix().toLower() != u"jpg" || file.filePath() == newest;
    });
    std::ranges::sort(pictures, std::ranges::greater(), creationTime);
    for (qsizetype i = keptPictures - 1; i < pictures.size(); ++i)
        QFile::remove(pictures[i].filePath());
}

} // namespace

Result<QString> writePicture(const QImage &image, const QString &folder, qint64 stamp)
{
    QString path;
    do {
        path = u"%1/static_%2.jpg"_s.arg(folder).arg(stamp++);
    } while (QFileInfo::exists(path));
    if (const auto written = replaceFile(path, image, "JPG", quality); !written)
        return std::unexpected(written.error());
    prune(folder, path);
    return path;
}

} // namespace velbrix
