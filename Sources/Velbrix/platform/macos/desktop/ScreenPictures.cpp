#include "platform/macos/desktop/ScreenPictures.h"

using namespace Qt::StringLiterals;

namespace velbrix {
namespace {

QJsonObject pictureJson(const ScreenPicture &picture)
{
    QJsonObject json{{u"path"_s, picture.path}};
    if (picture.scaling)
        json.insert(u"scaling"_s, *picture.scaling);
    if (picture.clips)
        json.insert(u"clips"_s, *picture.clips);
    if (picture.fill)
        json.insert(u"fill"_s, picture.fill->name(QColor::HexArgb));
    return json;
}

ScreenPicture picture(const QJsonObject &json)
{
    ScreenPicture picture;
    picture.path = json.value(u"path"_s).toString();
    if (const QJsonValue scaling = json.value(u"scaling"_s); scaling.isDouble())
        picture.scaling = scaling.toInt();
    if (const QJsonValue clips = json.value(u"clips"_s); clips.isBool())
        picture.clips = clips.toBool();
    if (const QColor fill(json.value(u"fill"_s).toString()); fill.isValid())
        picture.fill = fill;
    return picture;
}

} // namespace

QJsonObject toJson(const ScreenPictures &pictures)
{
    QJsonObject json;
    for (auto it = pictures.cbegin(); it != pictures.cend(); ++it)
        json.insert(QString::number(it.key()), pictureJson(it.value()));
    return json;
}

ScreenPictures screenPictures(const QJsonObject &json)
{
    ScreenPictures pictures;
    for (auto it = json.constBegin(); it != json.constEnd(); ++it) {
        bool isDisplay = false;
        const quint32 display = it.key().toUInt(&isDisplay);
        const ScreenPicture stored = picture(it.value().toObject());
        if (isDisplay && !stored.path.isEmpty())
            pictures.insert(display, stored);
    }
    return pictures;
}

std::optional<ScreenPicture> pictureFor(const ScreenPictures &pictures, quint32 display)
{
    const auto found = pictures.constFind(display);
    return found == pictures.constEnd() ? std::nullopt : std::optional(*found);
}

QStringList replaceGone(ScreenPictures &pictures, const QString &other,
                        const std::function<bool(const QString &path)> &isThere)
{
    QStringList gone;
    for (ScreenPicture &picture : pictures) {
        if (isThere(picture.path))
            continue;
        if (!gone.contains(picture.path))
            gone.append(picture.path);
        picture = {other, std::nullopt, std::nullopt, std::nullopt};
    }
    return gone;
}

} // namespace velbrix
