#include "maintenance/uninstall/UninstallTypes.h"

#include <QJsonArray>

#include <utility>

using namespace Qt::StringLiterals;

namespace velbrix {
namespace {

struct OptionKey {
    QString key;
    bool CleanupOptions::*flag;
};

const std::array<OptionKey, 7> &optionKeys()
{
    static const std::array<OptionKey, 7> keys = {{{u"preferences"_s, &CleanupOptions::preferences},
                                                   {u"appSupport"_s, &CleanupOptions::appSupport},
                                                   {u"caches"_s, &CleanupOptions::caches},
                                                   {u"containers"_s, &CleanupOptions::containers},
                                                   {u"savedState"_s, &CleanupOptions::savedState},
                                                   {u"logs"_s, &CleanupOptions::logs},
                                                   {u"webKit"_s, &CleanupOptions::webKit}}};
    return keys;
}

bool CleanupOptions::*member(LibraryKind kind)
{
    return optionKeys().at(static_cast<std::size_t>(kind)).flag;
}

template <typename Item, typename Read> std::optional<QList<Item>> readList(const QJsonValue &json, Read read)
{
    QList<Item> items;
    for (const auto &each : json.toArray()) {
        const std::optional<Item> item = read(each.toObject());
        if (!item)
            return std::nullopt;
        items.append(*item);
    }
    return items;
}

std::optional<MovedItem> movedItem(const QJsonObject &json)
{
    const MovedItem item = {json.value("original"_L1).toString(), json.value("trashed"_L1).toString(),
                            json.value("identity"_L1).toString()};
    return item.original.startsWith(u'/') ? std::optional(item) : std::nullopt;
}

std::optional<FailedItem> failedItem(const QJsonObject &json)
{
    return FailedItem{json.value("path"_L1).toString(), json.value("reason"_L1).toString()};
}

} // namespace

bool AppInfo::operator==(const AppInfo &other) const
{
    return id == other.id && name == other.name && path == other.path && bundleID == other.bundleID &&
           icon.cacheKey() == other.icon.cacheKey() && size == other.size && version == other.version;
}

QString rawValue(UninstallMode mode)
{
    switch (mode) {
    case UninstallMode::full:
        return u"完全卸载"_s;
    case UninstallMode::appOnly:
        return u"仅移除应用"_s;
    case UninstallMode::custom:
        return u"自定义"_s;
    }
    std::unreachable();
}

std::optional<UninstallMode> uninstallModeFromRawValue(const QString &stored)
{
    for (const UninstallMode mode : allUninstallModes) {
        if (rawValue(mode) == stored)
            return mode;
    }
    return std::nullopt;
}

QString description(UninstallMode mode)
{
    switch (mode) {
    case UninstallMode::full:
        return u"删除应用 + 所有关联数据"_s;
    case UninstallMode::appOnly:
        return u"只移应用本体到废纸篓"_s;
    case UninstallMode::custom:
        return u"自行选择要清理哪些数据"_s;
    }
    std::unreachable();
}

QString infoText(UninstallMode mode)
{
    switch (mode) {
    case UninstallMode::full:
        return u"将删除应用本体及所有关联的配置、缓存、日志等数据"_s;
    case UninstallMode::appOnly:
        return u"仅将应用移到废纸篓，所有数据文件保留在 Library 中"_s;
    case UninstallMode::custom:
        return {};
    }
    std::unreachable();
}

QJsonObject toJson(const CleanupOptions &options)
{
    QJsonObject json;
    for (const auto &[key, flag] : optionKeys())
        json.insert(key, options.*flag);
    return json;
}

std::optional<CleanupOptions> cleanupOptionsFromJson(const QJsonObject &json)
{
    CleanupOptions options;
    for (const auto &[key, flag] : optionKeys()) {
        const QJsonValue value = json.value(key);
        if (!value.isBool())
            return std::nullopt;
        options.*flag = value.toBool();
    }
    return options;
}

bool &flag(CleanupOptions &options, LibraryKind kind)
{
    return options.*member(kind);
}

bool flag(const CleanupOptions &options, LibraryKind kind)
{
    return options.*member(kind);
}

QString label(LibraryKind kind)
{
    switch (kind) {
    case LibraryKind::preferences:
        return u"偏好设置"_s;
    case LibraryKind::appSupport:
        return u"应用支持"_s;
    case LibraryKind::caches:
        return u"缓存"_s;
    case LibraryKind::containers:
        return u"沙箱容器"_s;
    case LibraryKind::savedState:
        return u"应用状态"_s;
    case LibraryKind::logs:
        return u"日志"_s;
    case LibraryKind::webKit:
        return u"WebKit"_s;
    }
    std::unreachable();
}

QString toggleTitle(LibraryKind kind)
{
    switch (kind) {
    case LibraryKind::preferences:
        return u"偏好设置 (Preferences)"_s;
    case LibraryKind::appSupport:
        return u"应用支持 (Application Support)"_s;
    case LibraryKind::caches:
        return u"缓存 (Caches)"_s;
    case LibraryKind::containers:
        return u"沙箱容器 (Containers)"_s;
    case LibraryKind::savedState:
        return u"应用状态 (Saved State)"_s;
    case LibraryKind::logs:
        return u"日志 (Logs)"_s;
    case LibraryKind::webKit:
        return u"网页数据 (WebKit)"_s;
    }
    std::unreachable();
}

QString UninstallStage::label() const
{
    switch (kind) {
    case Kind::scanningLibrary:
        return u"扫描 %1…"_s.arg(text);
    case Kind::cleaningLibrary:
        return u"清理 %1…"_s.arg(text);
    case Kind::failed:
        return u"失败："_s + text;
    case Kind::preparing:
        return u"准备卸载…"_s;
    case Kind::movingApp:
        return u"移入废纸篓…"_s;
    case Kind::finishing:
        return u"收尾中…"_s;
    case Kind::done:
        return u"卸载完成 ✅"_s;
    }
    std::unreachable();
}

double UninstallStage::progress() const
{
    switch (kind) {
    case Kind::scanningLibrary:
        return 0.25;
    case Kind::cleaningLibrary:
        return 0.6;
    case Kind::failed:
        return 1.0;
    case Kind::preparing:
        return 0.05;
    case Kind::movingApp:
        return 0.15;
    case Kind::finishing:
        return 0.95;
    case Kind::done:
        return 1.0;
    }
    std::unreachable();
}

QJsonObject toJson(const UninstallRecord &record)
{
    QJsonArray moved;
    for (const MovedItem &item : record.moved)
        moved.append(QJsonObject{
            {u"original"_s, item.original}, {u"trashed"_s, item.trashed}, {u"identity"_s, item.identity}});
    QJsonArray failed;
    for (const FailedItem &item : record.failed)
        failed.append(QJsonObject{{u"path"_s, item.path}, {u"reason"_s, item.reason}});
    return {{u"id"_s, record.id},
            {u"name"_s, record.name},
            {u"at"_s, record.at.toUTC().toString(Qt::ISODateWithMs)},
            {u"moved"_s, moved},
            {u"failed"_s, failed},
            {u"removedPackage"_s, record.removedPackage}};
}

std::optional<UninstallRecord> uninstallRecordFromJson(const QJsonObject &json)
{
    const auto moved = readList<MovedItem>(json.value("moved"_L1), movedItem);
    const auto failed = readList<FailedItem>(json.value("failed"_L1), failedItem);
    const QString id = json.value("id"_L1).toString();
    const QDateTime at = QDateTime::fromString(json.value("at"_L1).toString(), Qt::ISODateWithMs);
    if (id.isEmpty() || !at.isValid() || !moved || !failed)
        return std::nullopt;
    return UninstallRecord{id,      json.value("name"_L1).toString(),          at.toLocalTime(), *moved,
                           *failed, json.value("removedPackage"_L1).toString()};
}

} // namespace velbrix
