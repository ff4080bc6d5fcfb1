#include "wallpaper/ThumbnailCache.h"

#include "foundation/AtomicFile.h"

#include <QCryptographicHash>
#include <QDateTime>
#include <QDir>
#include <QFileInfo>

using namespace Qt::StringLiterals;

namespace velbrix {
namespace {

// In the picture's comments.
const QString lengthKey = u"Duration"_s;

} // namespace

QString ThumbnailCache::entry(const QString &file) const
{
    const QFileInfo info(file);
    const QString identity = u"%1|%2|%3"_s.arg(info.absoluteFilePath())
                                 .arg(info.lastModified().toMSecsSinceEpoch())
                                 .arg(info.size());
    const QByteArray name = QCryptographicHash::hash(identity.toUtf8(), QCryptographicHash::Sha1).toHex();
    return _folder + u'/' + QString::fromLatin1(name) + u".jpg"_s;
}

std::optional<VideoThumbnail> ThumbnailCache::find(const QString &file) const
{
    const QImage picture(entry(file));
    bool isKnown = false;
    const double length = picture.text(lengthKey).toDouble(&isKnown);
    return isKnown ? std::optional(VideoThumbnail{picture, length}) : std::nullopt;
}

void ThumbnailCache::store(const QString &file, const VideoThumbnail &thumbnail) const
{
    QImage picture = thumbnail.picture;
    picture.setText(lengthKey, QString::number(thumbnail.length, 'f', 3));
    // A cache: what cannot be written is made again next time.
    (void)replaceFile(entry(file), picture, "JPG", 85);
}

void ThumbnailCache::prune() const
{
    const QFileInfoList pictures = QDir(_folder).entryInfoList({u"*.jpg"_s}, QDir::Files, QDir::Time);
    for (qsizetype i = mostPictures; i < pictures.size(); ++i)
        QFile::remove(pictures[i].filePath());
}

} // namespace velbrix
