#include "platform/linux/desktop/XfcePicture.h"

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

QCoro::Task<Result<void>> XfcePicture::restore(const QJsonObject picture)
{
    const auto values = co_await _settings.values(base);
    if (!values)
        co_return std::unexpected(values.error());
    QVariantMap wanted;
    QStringList shown;
    for (auto former = picture.begin(); former != picture.end(); ++former) {
        wanted.insert(former.key(), typed(*former));
        if (former.key().endsWith(image))
            shown.append(values->value(former.key()).toString());
    }
    // What appeared since, such as another monitor, shows our picture too.
    for (auto value = values->begin(); value != values->end(); ++value) {
        const QString place = value.key().left(value.key().lastIndexOf(u'/'));
        if (isOurs(value.key()) && !picture.contains(value.key()) &&
            shown.contains(values->value(place + image).toString()))
            wanted.insert(value.key(), QVariant());
    }
    co_return co_await change(*values, wanted);
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
