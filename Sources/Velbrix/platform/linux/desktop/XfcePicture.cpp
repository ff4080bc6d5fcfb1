#include "platform/linux/desktop/XfcePicture.h"

#include "platform/linux/desktop/GonePicture.h"

using namespace Qt::StringLiterals;
using namespace std::chrono_literals;

namespace velbrix {
namespace {

const QString base = u"/backdrop"_s;
const QString image = u"/last-image"_s;
const QString style = u"/image-style"_s;
const QString cycle = u"/backdrop-cycle-enable"_s; // changes pictures by itself

constexpr int zoomed = 5; // fills the monitor, cropped

bool isOurs(const QString &property)
{
    return property.endsWith(image) || property.endsWith(style) || property.endsWith(cycle);
}

// A workspace of a monitor.
QString placeOf(const QString &property)
{
    return property.left(property.lastIndexOf(u'/'));
}

QVariant typed(const QJsonValue &value)
{
    return value.isDouble() ? QVariant(value.toInt()) : value.toVariant();
}

} // namespace

QCoro::Task<Result<QJsonObject>> XfcePicture::current()
{
    const auto values = co_await _settings.values(base);
    if (!values)
        co_return std::unexpected(values.error());
    QJsonObject picture;
    for (auto value = values->begin(); value != values->end(); ++value) {
        if (!isOurs(value.key()))
            continue;
        const QString place = placeOf(value.key());
        QJsonObject entry = picture.value(place).toObject();
        entry.insert(value.key().sliced(place.size()), QJsonValue::fromVariant(*value));
        picture.insert(place, entry);
    }
    co_return picture;
}

QCoro::Task<Result<void>> XfcePicture::set(const QString path)
{
    const auto values = co_await _settings.values(base);
    if (!values)
        co_return std::unexpected(values.error());
    QVariantMap wanted;
    for (auto value = values->begin(); value != values->end(); ++value) {
        if (!value.key().endsWith(image))
            continue;
        const QString place = value.key().chopped(image.size());
        wanted.insert(value.key(), path);
        wanted.insert(place + style, zoomed);
        if (values->value(place + cycle).toBool())
            wanted.insert(place + cycle, false);
    }
    if (wanted.isEmpty())
        co_return failure(u"Xfce 桌面还没有可设置的显示器"_s);
    co_return co_await change(*values, wanted);
}

QCoro::Task<Result<QStringList>> XfcePicture::restore(const QJsonObject picture)
{
    const auto values = co_await _settings.values(base);
    if (!values)
        co_return std::unexpected(values.error());
    QVariantMap wanted;
    QStringList shown;
    QStringList gone;
    for (const QString &place : picture.keys()) {
        const QJsonObject former = picture.value(place).toObject();
        shown.append(values->value(place + image).toString());
        const QString path = former.value(image).toString();
        const bool isMissing = co_await isGone(path);
        if (isMissing && !gone.contains(path))
            gone.append(path);
        for (auto value = former.begin(); value != former.end(); ++value)
            wanted.insert(place + value.key(), isMissing ? QVariant() : typed(*value));
    }
    // What appeared since, such as another monitor, shows our picture too.
    for (auto value = values->begin(); value != values->end(); ++value) {
        const QString place = placeOf(value.key());
        if (isOurs(value.key()) && !picture.contains(place) &&
            shown.contains(values->value(place + image).toString()))
            wanted.insert(value.key(), QVariant());
    }
    if (const auto done = co_await change(*values, wanted); !done)
        co_return std::unexpected(done.error());
    co_return gone;
}

// Two changes of one place at once leave xfdesktop with a black screen now and
// then, so the pictures follow when it is done with the rest.
QCoro::Task<Result<void>> XfcePicture::change(const QVariantMap values, const QVariantMap wanted)
{
    for (const bool isImage : {false, true}) {
        bool isChanged = false;
        for (auto each = wanted.begin(); each != wanted.end(); ++each) {
            if (each.key().endsWith(image) != isImage || values.value(each.key()) == *each)
                continue;
            const auto done = each->isValid() ? co_await _settings.set(each.key(), *each)
                                              : co_await _settings.reset(each.key());
            if (!done)
                co_return std::unexpected(done.error());
            isChanged = true;
        }
        if (isChanged && !isImage)
            co_await Pause(_clock, 500ms);
    }
    co_return Result<void>();
}

} // namespace velbrix
