#include "platform/linux/desktop/GsettingsPicture.h"

#include <QUrl>

using namespace Qt::StringLiterals;

namespace velbrix {
namespace {

const QString fileKey = u"picture-filename"_s; // MATE's; the others want an address
const QString optionsKey = u"picture-options"_s;

QString wanted(const QString &key, const QString &path)
{
    if (key == optionsKey)
        return Gsettings::quoted(u"zoom"_s);
    if (key == fileKey)
        return Gsettings::quoted(path);
    return Gsettings::quoted(QString::fromLatin1(QUrl::fromLocalFile(path).toEncoded()));
}

} // namespace

GsettingsPicture::GsettingsPicture(Clock &clock, QString schema) : _settings(clock, std::move(schema)) {}

QCoro::Task<Result<QStringList>> GsettingsPicture::pictureKeys()
{
    const auto there = co_await _settings.keys();
    if (!there)
        co_return std::unexpected(there.error());
    QStringList keys;
    for (const QString &key : {u"picture-uri"_s, u"picture-uri-dark"_s, fileKey, optionsKey}) {
        if (there->contains(key))
            keys.append(key);
    }
    if (keys.isEmpty())
        co_return failure(u"没有这个桌面的背景设置"_s);
    co_return keys;
}

QCoro::Task<Result<QJsonObject>> GsettingsPicture::current()
{
    const auto keys = co_await pictureKeys();
    if (!keys)
        co_return std::unexpected(keys.error());
    co_return co_await _settings.values(*keys);
}

QCoro::Task<Result<void>> GsettingsPicture::set(const QString path)
{
    const auto keys = co_await pictureKeys();
    if (!keys)
        co_return std::unexpected(keys.error());
    for (const QString &key : *keys) {
        if (const auto done = co_await _settings.set(key, wanted(key, path)); !done)
            co_return std::unexpected(done.error());
    }
    co_return Result<void>();
}

QCoro::Task<Result<void>> GsettingsPicture::restore(const QJsonObject picture)
{
    return _settings.set(picture);
}

} // namespace velbrix
