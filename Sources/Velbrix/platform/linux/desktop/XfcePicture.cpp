#include "platform/linux/desktop/XfcePicture.h"

using namespace Qt::StringLiterals;

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
        if (isOurs(value.key()))
            picture.insert(value.key(), QJsonValue::fromVariant(*value));
    }
    co_return picture;
}

QCoro::Task<Result<void>> XfcePicture::set(const QString path)
{
    const auto values = co_await _settings.values(base);
    if (!values)
        co_return std::unexpected(values.error());
    bool isSet = false;
    for (auto value = values->begin(); value != values->end(); ++value) {
        if (!value.key().endsWith(image))
            continue;
        const QString place = value.key().chopped(image.size());
        QVariantMap wanted{{value.key(), path}, {place + style, zoomed}};
        if (values->value(place + cycle).toBool())
            wanted.insert(place + cycle, false);
        for (auto each = wanted.begin(); each != wanted.end(); ++each) {
            if (values->value(each.key()) == *each)
                continue;
            if (const auto done = co_await _settings.set(each.key(), *each); !done)
                co_return std::unexpected(done.error());
        }
        isSet = true;
    }
    if (!isSet)
        co_return failure(u"Xfce 桌面还没有可设置的显示器"_s);
    co_return Result<void>();
}

QCoro::Task<Result<void>> XfcePicture::restore(const QJsonObject picture)
{
    const auto values = co_await _settings.values(base);
    if (!values)
        co_return std::unexpected(values.error());
    // What appeared since, such as another monitor, shows our picture too.
    QStringList shown;
    for (auto former = picture.begin(); former != picture.end(); ++former) {
        if (former.key().endsWith(image))
            shown.append(values->value(former.key()).toString());
    }
    for (auto value = values->begin(); value != values->end(); ++value) {
        const bool isNew = isOurs(value.key()) && !picture.contains(value.key());
        const QString place = value.key().left(value.key().lastIndexOf(u'/'));
        if (!isNew || !shown.contains(values->value(place + image).toString()))
            continue;
        if (const auto done = co_await _settings.reset(value.key()); !done)
            co_return std::unexpected(done.error());
    }
    for (auto former = picture.begin(); former != picture.end(); ++former) {
        const QVariant wanted = typed(*former);
        if (values->value(former.key()) == wanted)
            continue;
        if (const auto done = co_await _settings.set(former.key(), wanted); !done)
            co_return std::unexpected(done.error());
    }
    co_return Result<void>();
}

} // namespace velbrix
