#include "wallpaper/StaticDesktop.h"

#include "foundation/Log.h"
#include "foundation/SettingsStore.h"
#include "wallpaper/PictureFiles.h"

#include <QCoroFuture>
#include <QJsonDocument>
#include <QPointer>
#include <QtConcurrent/QtConcurrentRun>

#include <utility>

using namespace Qt::StringLiterals;

namespace velbrix {
namespace {

const QString originalKey = u"Velbrix_WallpaperOriginalDesktopPicture"_s;

void logFailure(const QString &reason)
{
    log::line(u"Wallpaper"_s, u"设置桌面失败:"_s + reason);
}

} // namespace

StaticDesktop::StaticDesktop(DesktopPicture &picture, SettingsStore &settings, Clock &clock, QString folder,
                             QObject *parent)
    : QObject(parent), _picture(picture), _settings(settings), _clock(clock), _folder(std::move(folder))
{
}

void StaticDesktop::setStaticDesktop(const QImage &image)
{
    if (image.isNull())
        return;
    _wanted = image;
    if (!isWorking())
        work();
}

void StaticDesktop::putBack()
{
    const bool isReplaced = isWorking() || _settings.json(originalKey).has_value();
    _wanted = isReplaced ? std::optional(QImage()) : std::nullopt;
    if (isReplaced && !isWorking())
        work();
}

QCoro::Task<> StaticDesktop::work()
{
    const QPointer self(this);
    _isWorking = true;
    while (self && _wanted) {
        const QImage image = *std::exchange(_wanted, std::nullopt);
        if (image.isNull())
            co_await restoreOriginal();
        else
            co_await apply(image);
    }
    if (self)
        _isWorking = false;
}

QCoro::Task<> StaticDesktop::apply(QImage image)
{
    const QPointer self(this);
    const auto remembered = co_await rememberOriginal();
    if (!self)
        co_return;
    if (!remembered) {
        logFailure(remembered.error().message);
        co_return;
    }
    const QString folder = _folder;
    const qint64 stamp = _clock.now().toMSecsSinceEpoch();
    auto writing = QtConcurrent::run([image, folder, stamp] { return writePicture(image, folder, stamp); });
    const Result<QString> path = co_await writing;
    if (!self)
        co_return;
    if (!path) {
        logFailure(path.error().message);
        co_return;
    }
    const auto set = co_await _picture.set(*path);
    if (!set)
        logFailure(set.error().message);
}

QCoro::Task<> StaticDesktop::restoreOriginal()
{
    const auto original = _settings.json(originalKey);
    if (!original)
        co_return;
    const QPointer self(this);
    const QJsonObject picture = original->toObject();
    const auto restored = co_await _picture.restore(picture);
    if (!self)
        co_return;
    // Kept after a failure: the next stop or start tries again.
    if (!restored)
        logFailure(restored.error().message);
    else if (_settings.json(originalKey) == original)
        _settings.remove(originalKey);
}

QCoro::Task<Result<void>> StaticDesktop::rememberOriginal()
{
    if (_settings.json(originalKey))
        co_return {};
    const QPointer self(this);
    const auto now = co_await _picture.current();
    if (!now)
        co_return std::unexpected(now.error());
    // After lost settings the desktop may still show one of our pictures.
    if (!self || isOurs(*now))
        co_return {};
    _settings.set(originalKey, *now);
    co_return _settings.flush();
}

bool StaticDesktop::isOurs(const QJsonObject &picture) const
{
    return QJsonDocument(picture).toJson(QJsonDocument::Compact).contains((_folder + u'/').toUtf8());
}

} // namespace velbrix
