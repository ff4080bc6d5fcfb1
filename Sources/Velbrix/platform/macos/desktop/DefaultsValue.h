#pragma once

#include <QByteArray>
#include <QJsonValue>
#include <QString>

#include <optional>
#include <variant>

namespace velbrix {

// One value of the defaults database, as far as this program writes any:
// numbers without a fraction are whole numbers there, structured values are
// JSON text in a data object.
using DefaultsValue = std::variant<bool, qint64, double, QString, QByteArray>;

// The database also holds what the system keeps for every application.
bool isSettingsKey(const QString &key);

// Empty for a null, which means that the key is to be removed.
std::optional<DefaultsValue> defaultsValue(const QJsonValue &value);
// Empty for data that is no JSON object or array.
std::optional<QJsonValue> jsonValue(const DefaultsValue &value);

} // namespace velbrix
