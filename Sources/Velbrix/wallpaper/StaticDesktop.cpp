#include "wallpaper/StaticDesktop.h"

#include "foundation/SettingsStore.h"
#include "wallpaper/PictureFiles.h"
#include "wallpaper/WallpaperLog.h"

#include <QCoroFuture>
#include <QJsonArray>
#include <QJsonDocument>
#include <QPointer>
#include <QUrl>
#include <QtConcurrent/QtConcurrentRun>

#include <utility>

using namespace Qt::StringLiterals;

namespace velbrix {
namespace {

const QString originalKey = u"Velbrix_WallpaperOriginalDesktopPicture"_s;

void logFailure(const QString &reason)
{
    wallpaperlog::say(u"设置桌面失败:"_s + reason);
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
        const QImage image = std::exchange(_wanted, std::nullopt).value_or(QImage());
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
    QJsonObject picture = original->toObject();
    const auto now = co_await _picture.current();
    if (!self)
        co_return;
    // What the user has chosen since is theirs, and stays.
    for (const QString &place : picture.keys()) {
        if (now && now->contains(place) && !isOurs(now->value(place)))
            picture.remove(place);
    }
    const auto restored = picture.isEmpty() ? Result<void>() : co_await _picture.restore(picture);
    if (!self)
        co_return;
    // Kept after a failure: the next stop or start tries again.
    if (!restored)
        logFailure(restored.error().message);
    else if (_settings.json(originalKey) == original)
        _settings.remove(originalKey);
}

// Before each change: another program may have taken over the desktop, or the
// user may have chosen a picture meanwhile.
QCoro::Task<Result<void>> StaticDesktop::rememberOriginal()
{
    const QPointer self(this);
    const auto now = co_await _picture.current();
    if (!now)
        co_return std::unexpected(now.error());
    if (!self)
        co_return {};
    const QJsonObject known = _settings.json(originalKey).value_or(QJsonValue()).toObject();
    QJsonObject original = known;
    for (auto place = now->begin(); place != now->end(); ++place) {
        if (!isOurs(*place))
            original.insert(place.key(), *place);
    }
    if (original == known)
        co_return {};
    _settings.set(originalKey, original);
    co_return _settings.flush();
}

bool StaticDesktop::isOurs(const QJsonValue &place) const
{
    if (place.toObject().value(u"ours"_s).toBool())
        return true;
    const QByteArray text = QJsonDocument(QJsonArray{place}).toJson(QJsonDocument::Compact);
    const QString folder = _folder + u'/';
    return text.contains(folder.toUtf8()) || text.contains(QUrl::fromLocalFile(folder).toEncoded());
}

} // namespace velbrix
