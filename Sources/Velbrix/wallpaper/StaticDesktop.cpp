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

#include <algorithm>
#include <utility>

using namespace Qt::StringLiterals;

namespace velbrix {
namespace {

const QString originalKey = u"Velbrix_WallpaperOriginalDesktopPicture"_s;

const QString ownKey = u"own"_s;
const QString coveredByKey = u"coveredBy"_s;
constexpr qsizetype mostCovers = 64;
constexpr qsizetype mostOriginals = 16; // of one place

void logFailure(const QString &reason)
{
    wallpaperlog::say(u"设置桌面失败:"_s + reason);
}

QByteArray textOf(const QJsonValue &place)
{
    return QJsonDocument(QJsonArray{place}).toJson(QJsonDocument::Compact);
}

bool names(const QJsonValue &place, const QString &path)
{
    const QByteArray text = textOf(place);
    return text.contains(path.toUtf8()) || text.contains(QUrl::fromLocalFile(path).toEncoded());
}

// Of one place: what the user had there, each with those of our pictures that
// have covered it, where there can be several.
using Originals = QJsonArray;

Originals originalsOf(const QJsonValue &stored)
{
    return stored.isObject() ? Originals{QJsonObject{{ownKey, stored}}} : stored.toArray();
}

// The one under the picture of ours that the place shows; the last one where
// nothing says which.
qsizetype originalUnder(const Originals &originals, const QJsonValue &shown)
{
    qsizetype found = -1;
    for (qsizetype i = 0; i < originals.size(); ++i) {
        const QJsonArray covers = originals[i].toObject().value(coveredByKey).toArray();
        const auto isShown = [&shown](const QJsonValue &cover) { return names(shown, cover.toString()); };
        if (covers.isEmpty() || std::ranges::any_of(covers, isShown))
            found = i;
    }
    return found;
}

void addCover(Originals &originals, qsizetype at, const QString &path)
{
    QJsonObject original = originals[at].toObject();
    QJsonArray covers = original.value(coveredByKey).toArray();
    covers.append(path);
    while (covers.size() > mostCovers)
        covers.removeFirst();
    original.insert(coveredByKey, covers);
    originals.replace(at, original);
}

} // namespace

StaticDesktop::StaticDesktop(DesktopPicture &picture, SettingsStore &settings, Clock &clock, QString folder,
                             QObject *parent)
    : QObject(parent), _picture(picture), _settings(settings), _clock(clock), _folder(std::move(folder))
{
    // Those that were out of view when the user's own came back.
    _pictures = _picture.observePictures([this] {
        if (!_isOursWanted)
            putBack();
    });
}

void StaticDesktop::setStaticDesktop(const QImage &image)
{
    if (image.isNull())
        return;
    _isOursWanted = true;
    _wanted = image;
    if (!isWorking())
        work();
}

void StaticDesktop::putBack()
{
    _isOursWanted = false;
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
    const auto remembered = co_await rememberOriginal(*path);
    if (!self)
        co_return;
    if (!remembered) {
        logFailure(remembered.error().message);
        co_return;
    }
    const auto set = co_await _picture.set(*path);
    if (!set)
        logFailure(set.error().message);
}

QCoro::Task<> StaticDesktop::restoreOriginal()
{
    const auto known = _settings.json(originalKey);
    if (!known)
        co_return;
    const QPointer self(this);
    const auto now = co_await _picture.current();
    if (!self)
        co_return;
    QJsonObject picture;
    QJsonObject left = known->toObject();
    for (const QString &place : left.keys()) {
        const bool isSeen = now && now->contains(place);
        // What the user has chosen since is theirs, and stays.
        const bool isTheirs = isSeen && !isOurs(now->value(place));
        Originals originals = originalsOf(left.value(place));
        const qsizetype at =
            isTheirs ? -1 : originalUnder(originals, now.value_or(QJsonObject()).value(place));
        if (at >= 0) {
            picture.insert(place, originals[at].toObject().value(ownKey));
            originals.removeAt(at);
        }
        if (originals.isEmpty() || !_picture.hasHiddenPictures())
            left.remove(place);
        else
            left.insert(place, originals);
    }
    const auto restored = picture.isEmpty() ? Result<QStringList>() : co_await _picture.restore(picture);
    if (!self)
        co_return;
    if (!restored) {
        // Kept: the next stop or start tries again.
        logFailure(restored.error().message);
        _problem = u"没有恢复原来的桌面图片：%1。下次停止壁纸或启动时再试。"_s.arg(restored.error().message);
        co_return;
    }
    if (!restored->isEmpty())
        _problem = u"原来的桌面图片已不在原处，桌面改用了默认图片：%1"_s.arg(restored->join(u'、'));
    if (_settings.json(originalKey) == known)
        (void)keep(left);
}

// Before each change: another program may have taken over the desktop, the user
// may have chosen a picture meanwhile, or look at another Space.
QCoro::Task<Result<void>> StaticDesktop::rememberOriginal(const QString path)
{
    const QPointer self(this);
    const auto now = co_await _picture.current();
    if (!now)
        co_return std::unexpected(now.error());
    if (!self)
        co_return {};
    _problem = QString();
    QJsonObject all = _settings.json(originalKey).value_or(QJsonValue()).toObject();
    const QJsonObject before = all;
    for (auto place = now->begin(); place != now->end(); ++place) {
        Originals originals = originalsOf(all.value(place.key()));
        const bool keepsOthers = _picture.hasHiddenPictures();
        if (!isOurs(*place)) {
            if (!keepsOthers)
                originals = {};
            originals.append(QJsonObject{{ownKey, *place}});
            while (originals.size() > mostOriginals)
                originals.removeFirst();
            if (keepsOthers)
                addCover(originals, originals.size() - 1, path);
        } else if (const auto at = originalUnder(originals, *place); keepsOthers && at >= 0) {
            addCover(originals, at, path);
        }
        if (!originals.isEmpty())
            all.insert(place.key(), originals);
    }
    if (all == before)
        co_return {};
    co_return keep(all);
}

Result<void> StaticDesktop::keep(const QJsonObject &originals)
{
    if (originals.isEmpty()) {
        _settings.remove(originalKey);
        return {};
    }
    _settings.set(originalKey, originals);
    return _settings.flush();
}

bool StaticDesktop::isOurs(const QJsonValue &place) const
{
    return place.toObject().value(u"ours"_s).toBool() || names(place, _folder + u'/');
}

} // namespace velbrix
