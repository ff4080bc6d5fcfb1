#include "platform/macos/desktop/DefaultsValue.h"

#include <QJsonArray>
#include <QJsonDocument>
#include <QJsonObject>

#include <algorithm>
#include <cmath>
#include <type_traits>

using namespace Qt::StringLiterals;

namespace velbrix {
namespace {

// Beyond this a double leaves out whole numbers.
constexpr double exactLimit = 9007199254740992.0;

// Read by others than this program, and by copies of it that know no other kind.
const QStringList &nativeKeys()
{
    static const QStringList keys{u"VelbClean_CleanupSelection"_s, u"VelbClean_CustomPaths"_s,
                                  u"Velbrix_PerDisplayVideoPaths"_s};
    return keys;
}

std::optional<DefaultsValue> nativeValue(const QJsonValue &value)
{
    const auto isText = [](const QJsonValue &each) { return each.isString(); };
    if (const QJsonArray list = value.toArray(); value.isArray() && std::ranges::all_of(list, isText)) {
        QStringList texts;
        for (const QJsonValue &each : list)
            texts.append(each.toString());
        return texts;
    }
    if (const QJsonObject object = value.toObject();
        value.isObject() && std::ranges::all_of(object, isText)) {
        QMap<QString, QString> texts;
        for (auto entry = object.begin(); entry != object.end(); ++entry)
            texts.insert(entry.key(), entry.value().toString());
        return texts;
    }
    return std::nullopt;
}

QJsonValue jsonOf(const QMap<QString, QString> &texts)
{
    QJsonObject object;
    for (auto entry = texts.begin(); entry != texts.end(); ++entry)
        object.insert(entry.key(), entry.value());
    return object;
}

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

std::optional<DefaultsValue> defaultsValue(const QString &key, const QJsonValue &value)
{
    if (nativeKeys().contains(key)) {
        if (auto native = nativeValue(value))
            return native;
    }
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
            using Held = std::decay_t<decltype(held)>;
            if constexpr (std::is_same_v<Held, QByteArray>)
                return structuredValue(held);
            else if constexpr (std::is_same_v<Held, QStringList>)
                return QJsonArray::fromStringList(held);
            else if constexpr (std::is_same_v<Held, QMap<QString, QString>>)
                return jsonOf(held);
            else
                return QJsonValue(held);
        },
        value);
}

} // namespace velbrix
