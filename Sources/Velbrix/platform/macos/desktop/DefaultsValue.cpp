#include "platform/macos/desktop/DefaultsValue.h"

#include <QJsonArray>
#include <QJsonDocument>
#include <QJsonObject>

#include <cmath>
#include <type_traits>

using namespace Qt::StringLiterals;

namespace velbrix {
namespace {

// Beyond this a double leaves out whole numbers.
constexpr double exactLimit = 9007199254740992.0;

DefaultsValue numberValue(double number)
{
    if (number == std::floor(number) && std::abs(number) <= exactLimit)
        return static_cast<qint64>(number);
    return number;
}

std::optional<QJsonValue> structuredValue(const QByteArray &data)
{
    const QJsonDocument document = QJsonDocument::fromJson(data);
    if (document.isObject())
        return document.object();
    if (document.isArray())
        return document.array();
    return std::nullopt;
}

} // namespace

bool isSettingsKey(const QString &key)
{
    return key.startsWith("Velbrix_"_L1) || key.startsWith("VelbClean_"_L1);
}

std::optional<DefaultsValue> defaultsValue(const QJsonValue &value)
{
    switch (value.type()) {
    case QJsonValue::Bool:
        return value.toBool();
    case QJsonValue::Double:
        return numberValue(value.toDouble());
    case QJsonValue::String:
        return value.toString();
    case QJsonValue::Object:
        return QJsonDocument(value.toObject()).toJson(QJsonDocument::Compact);
    case QJsonValue::Array:
        return QJsonDocument(value.toArray()).toJson(QJsonDocument::Compact);
    case QJsonValue::Null:
    case QJsonValue::Undefined:
        break;
    }
    return std::nullopt;
}

std::optional<QJsonValue> jsonValue(const DefaultsValue &value)
{
    return std::visit(
        [](const auto &held) -> std::optional<QJsonValue> {
            if constexpr (std::is_same_v<std::decay_t<decltype(held)>, QByteArray>)
                return structuredValue(held);
            else
                return QJsonValue(held);
        },
        value);
}

} // namespace velbrix
