#include "platform/linux/desktop/GsettingsPicture.h"

#include "platform/linux/desktop/GonePicture.h"

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

// Of the picture that a value names; empty for what names no local file.
QString pathOf(const QString &key, const QString &value)
{
    if (key == optionsKey)
        return {};
    const QString text = Gsettings::unquoted(value);
    const QString path = key == fileKey ? text : QUrl::fromEncoded(text.toUtf8()).toLocalFile();
    return path.startsWith(u'/') ? path : QString();
}

} // namespace

GsettingsPicture::GsettingsPicture(Clock &clock, QString schema) : _settings(clock, std::move(schema)) {}

QCoro::Task<Result<QJsonObject>> GsettingsPicture::pictureValues()
{
    const auto all = co_await _settings.values();
    if (!all)
        co_return std::unexpected(all.error());
    QJsonObject found;
    for (const QString &key : {u"picture-uri"_s, u"picture-uri-dark"_s, fileKey, optionsKey}) {
        if (all->contains(key))
            found.insert(key, all->value(key));
    }
    if (found.isEmpty())
        co_return failure(u"没有这个桌面的背景设置"_s);
    co_return found;
}

QCoro::Task<Result<QJsonObject>> GsettingsPicture::current()
{
    const auto values = co_await pictureValues();
    if (!values)
        co_return std::unexpected(values.error());
    const QJsonObject picture{{QString(), *values}};
    co_return picture;
}

QCoro::Task<Result<void>> GsettingsPicture::set(const QString path)
{
    const auto values = co_await pictureValues();
    if (!values)
        co_return std::unexpected(values.error());
    for (const QString &key : values->keys()) {
        if (values->value(key) == wanted(key, path))
            continue;
        if (const auto done = co_await _settings.set(key, wanted(key, path)); !done)
            co_return std::unexpected(done.error());
    }
    co_return Result<void>();
}

QCoro::Task<Result<QStringList>> GsettingsPicture::restore(const QJsonObject picture)
{
    const QJsonObject former = picture.value(QString()).toObject();
    QStringList gone;
    for (const QString &key : former.keys()) {
        const QString value = former.value(key).toString();
        const QString path = pathOf(key, value);
        const bool isMissing = co_await isGone(path);
        const auto done = isMissing ? co_await _settings.reset(key) : co_await _settings.set(key, value);
        if (!done)
            co_return std::unexpected(done.error());
        if (!isMissing || gone.contains(path))
            continue;
        // A default that is not installed is nothing that the user misses.
        const auto now = co_await _settings.value(key);
        if (now && *now != value)
            gone.append(path);
    }
    co_return gone;
}

} // namespace velbrix
