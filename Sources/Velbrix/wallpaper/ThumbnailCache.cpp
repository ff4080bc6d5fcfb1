#include "wallpaper/ThumbnailCache.h"

#include "foundation/AtomicFile.h"

#include <QCryptographicHash>
#include <QDateTime>
#include <QDir>
#include <QFileInfo>

using namespace Qt::StringLiterals;

namespace velbrix {

QString ThumbnailCache::entry(const QString &file) const
{
    const QFileInfo info(file);
    const QString identity = u"%1|%2|%3"_s.arg(info.absoluteFilePath())
                                 .arg(info.lastModified().toMSecsSinceEpoch())
                                 .arg(info.size());
    const QByteArray name = QCryptographicHash::hash(identity.toUtf8(), QCryptographicHash::Sha1).toHex();
    return _folder + u'/' + QString::fromLatin1(name) + u".jpg"_s;
}

QImage ThumbnailCache::find(const QString &file) const
{
    return QImage(entry(file));
}

void ThumbnailCache::store(const QString &file, const QImage &picture) const
{
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
