#include "platform/linux/x11/RootPicture.h"

#include "foundation/AtomicFile.h"
#include "platform/linux/x11/RootWindow.h"

#include <QColor>
#include <QCoroFuture>
#include <QCryptographicHash>
#include <QDir>
#include <QImageReader>
#include <QPainter>
#include <QtConcurrent/QtConcurrentRun>

#include <optional>

using namespace Qt::StringLiterals;

namespace velbrix {
namespace {

const QString publishedKey = u"published"_s;
const QString backgroundKey = u"background"_s;
const QString colourKey = u"colour"_s;

constexpr qsizetype keptFiles = 4;

std::optional<QRgb> onlyColour(const QImage &image)
{
    const QRgb first = image.pixel(0, 0);
    for (int y = 0; y < image.height(); ++y) {
        const auto *line = reinterpret_cast<const QRgb *>(image.constScanLine(y));
        for (int x = 0; x < image.width(); ++x) {
            if (line[x] != first)
                return std::nullopt;
        }
    }
    return first;
}

// Named by its pixels, so that keeping a picture twice replaces nothing.
Result<QString> keep(const QString &folder, const QImage &image)
{
    const QByteArrayView bytes(image.constBits(), image.sizeInBytes());
    const QByteArray name = QCryptographicHash::hash(bytes, QCryptographicHash::Sha1).toHex();
    const QString path = folder + u"/root-"_s + QString::fromLatin1(name) + u".png"_s;
    if (const auto kept = replaceFile(path, image, "PNG"); !kept)
        return failure(u"无法保存原来的桌面图片："_s + kept.error().message);
    const QFileInfoList kept =
        QDir(folder).entryInfoList({u"root-*.png"_s}, QDir::Files, QDir::Time); // newest first
    for (const QFileInfo &old : kept.mid(keptFiles))
        QFile::remove(old.filePath());
    return path;
}

Result<QJsonObject> remember(const QString &folder)
{
    auto root = RootWindow::open();
    if (!root)
        return std::unexpected(root.error());
    if (root->isOurs())
        return QJsonObject{{u"ours"_s, true}};
    const QImage published = root->published();
    const QImage image = published.isNull() ? root->background() : published;
    if (image.isNull())
        return QJsonObject();
    if (const auto colour = published.isNull() ? onlyColour(image) : std::nullopt)
        return QJsonObject{{colourKey, QColor::fromRgb(*colour).name()}};
    const auto path = keep(folder, image);
    if (!path)
        return std::unexpected(path.error());
    return QJsonObject{{published.isNull() ? backgroundKey : publishedKey, *path}};
}

QImage cropped(const QImage &picture, QSize size)
{
    const QImage covering = picture.scaled(size, Qt::KeepAspectRatioByExpanding, Qt::SmoothTransformation);
    return covering.copy((covering.width() - size.width()) / 2, (covering.height() - size.height()) / 2,
                         size.width(), size.height());
}

Result<void> show(const QString &path)
{
    QImageReader reader(path);
    reader.setAutoTransform(true);
    const QImage picture = reader.read();
    if (picture.isNull())
        return failure(u"无法读取图片："_s + path);
    auto root = RootWindow::open();
    if (!root)
        return std::unexpected(root.error());
    QImage whole(root->size(), QImage::Format_RGB32);
    whole.fill(Qt::black);
    QPainter painter(&whole);
    const QList<QRect> monitors = root->monitors();
    for (const QRect &monitor : monitors)
        painter.drawImage(monitor.topLeft(), cropped(picture, monitor.size()));
    painter.end();
    return root->publishAsOurs(whole);
}

// Answers what is gone.
Result<QStringList> bringBack(const QJsonObject &former)
{
    auto root = RootWindow::open();
    if (!root)
        return std::unexpected(root.error());
    if (former.contains(colourKey)) {
        root->setBackground(QColor(former.value(colourKey).toString()).rgb());
        return QStringList();
    }
    const QString path = former.value(publishedKey).toString(former.value(backgroundKey).toString());
    const QImage image(path);
    if (image.isNull()) {
        root->clear();
        return path.isEmpty() ? QStringList() : QStringList{path};
    }
    const auto shown = former.contains(publishedKey) ? root->publish(image) : root->setBackground(image);
    if (!shown)
        return std::unexpected(shown.error());
    return QStringList();
}

} // namespace

RootPicture::RootPicture(QString folder) : _folder(std::move(folder)) {}

QCoro::Task<Result<QJsonObject>> RootPicture::current()
{
    const QFuture<Result<QJsonObject>> search = QtConcurrent::run(remember, _folder);
    const auto remembered = co_await search;
    if (!remembered)
        co_return std::unexpected(remembered.error());
    const QJsonObject picture{{QString(), *remembered}};
    co_return picture;
}

QCoro::Task<Result<void>> RootPicture::set(const QString path)
{
    const QFuture<Result<void>> shown = QtConcurrent::run(show, path);
    co_return co_await shown;
}

QCoro::Task<Result<QStringList>> RootPicture::restore(const QJsonObject picture)
{
    const QFuture<Result<QStringList>> restored =
        QtConcurrent::run(bringBack, picture.value(QString()).toObject());
    co_return co_await restored;
}

} // namespace velbrix
