#include "platform/linux/desktop/PlasmaPicture.h"

#include "platform/linux/desktop/GonePicture.h"
#include "platform/linux/desktop/PlasmaScript.h"

#include <QJsonArray>
#include <QUrl>

using namespace Qt::StringLiterals;

namespace velbrix {
namespace {

const QString imageKey = u"image"_s;

// Another kind of background (a slide show, a colour) keeps its own settings
// and comes back with its name alone.
const QString readScript = uR"(
print(JSON.stringify(desktops().map(function (d) {
    d.currentConfigGroup = ["Wallpaper", "org.kde.image", "General"];
    return { id: d.id, kind: d.wallpaperPlugin,
             image: String(d.readConfig("Image", "")), fill: String(d.readConfig("FillMode", "2")) };
})));
)"_s;

const QString setScript = uR"(
desktops().forEach(function (d) {
    d.wallpaperPlugin = "org.kde.image";
    d.currentConfigGroup = ["Wallpaper", "org.kde.image", "General"];
    d.writeConfig("FillMode", "2");
    d.writeConfig("Image", input[0]);
});
)"_s;

const QString restoreScript = uR"(
desktops().forEach(function (d) {
    input.filter(function (former) { return former.id === d.id; }).forEach(function (former) {
        d.currentConfigGroup = ["Wallpaper", "org.kde.image", "General"];
        d.writeConfig("FillMode", former.fill);
        d.writeConfig("Image", former.image);
        d.wallpaperPlugin = former.kind;
    });
});
)"_s;

} // namespace

QCoro::Task<Result<QJsonObject>> PlasmaPicture::current()
{
    const auto desktops = co_await runPlasmaScript(readScript, QJsonDocument());
    if (!desktops)
        co_return std::unexpected(desktops.error());
    QJsonObject picture;
    for (const QJsonValue &each : desktops->array())
        picture.insert(QString::number(each.toObject().value(u"id"_s).toInt()), each);
    co_return picture;
}

QCoro::Task<Result<void>> PlasmaPicture::set(const QString path)
{
    const QString address = QString::fromLatin1(QUrl::fromLocalFile(path).toEncoded());
    const QJsonDocument input(QJsonArray{address});
    const auto done = co_await runPlasmaScript(setScript, input);
    if (!done)
        co_return std::unexpected(done.error());
    co_return Result<void>();
}

QCoro::Task<Result<QStringList>> PlasmaPicture::restore(const QJsonObject picture)
{
    QJsonArray all;
    QStringList gone;
    for (const QJsonValue &former : picture) {
        QJsonObject each = former.toObject();
        const QString path = QUrl(each.value(imageKey).toString()).toLocalFile();
        if (co_await isGone(path)) {
            if (!gone.contains(path))
                gone.append(path);
            each.insert(imageKey, QString()); // the theme's own
        }
        all.append(each);
    }
    const QJsonDocument input(all);
    const auto done = co_await runPlasmaScript(restoreScript, input);
    if (!done)
        co_return std::unexpected(done.error());
    co_return gone;
}

} // namespace velbrix
