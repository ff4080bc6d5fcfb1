#pragma once

#include <QByteArray>
#include <QJsonValue>
#include <QMap>
#include <QString>
#include <QStringList>

#include <optional>
#include <variant>

namespace velbrix {

// One value of the defaults database, as far as this program writes any:
// numbers without a fraction are whole numbers there, structured values are
// JSON text in a data object, but for a few that are arrays and dictionaries of
// strings in the database's own kind.
using DefaultsValue =
    std::variant<bool, qint64, double, QString, QByteArray, QStringList, QMap<QString, QString>>;

// The database also holds what the system keeps for every application.
bool isSettingsKey(const QString &key);

// Empty for a null, which means that the key is to be removed.
std::optional<DefaultsValue> defaultsValue(const QString &key, const QJsonValue &value);
// Empty for data that is no JSON object or array.
std::optional<QJsonValue> jsonValue(const DefaultsValue &value);

} // namespace velbrix
