#pragma once

#include "platform/ApplicationCatalog.h"

#include <QDateTime>
#include <QIcon>
#include <QJsonObject>
#include <QList>
#include <QString>

#include <array>
#include <optional>

namespace velbrix {

// One row of the uninstaller.
struct AppInfo {
    quint64 id = 0; // made anew by every scan
    QString name;
    QString path;
    QString bundleID;            // empty when it has none
    QIcon icon;                  // null when there is none
    qint64 size = 0;             // bytes; 0 while unknown
    QString version;             // "—" when unknown
    InstalledApplication source; // what the host told of it

    // Icons are compared by identity.
    bool operator==(const AppInfo &other) const;
};

enum class UninstallMode { full, appOnly, custom };

inline constexpr std::array allUninstallModes = {UninstallMode::full, UninstallMode::appOnly,
                                                 UninstallMode::custom};

QString rawValue(UninstallMode mode); // stored and shown
std::optional<UninstallMode> uninstallModeFromRawValue(const QString &stored);
QString description(UninstallMode mode);
QString infoText(UninstallMode mode); // empty for custom

struct CleanupOptions {
    bool preferences = true;
    bool appSupport = true;
    bool caches = true;
    bool containers = true;
    bool savedState = true;
    bool logs = true;
    bool webKit = true;

    bool operator==(const CleanupOptions &) const = default;
};

QJsonObject toJson(const CleanupOptions &options);
// Nothing unless all seven are there as booleans.
std::optional<CleanupOptions> cleanupOptionsFromJson(const QJsonObject &json);
bool &flag(CleanupOptions &options, LibraryKind kind);
bool flag(const CleanupOptions &options, LibraryKind kind);
QString label(LibraryKind kind);       // "偏好设置"
QString toggleTitle(LibraryKind kind); // "偏好设置 (Preferences)"

struct UninstallStage {
    enum class Kind { scanningLibrary, cleaningLibrary, failed, preparing, movingApp, finishing, done };

    Kind kind = Kind::preparing;
    QString text; // the library's label, or why it failed

    QString label() const;
    double progress() const;
    bool operator==(const UninstallStage &) const = default;
};

// Why an entry of a library folder is thought to belong to the application.
enum class MatchReason {
    application,  // the bundle, the launcher, the package itself
    companion,    // said by the host to belong to it
    identifier,   // its name contains the identifier
    vendorPrefix, // its name contains "com." and the application's name
    name          // its name contains the application's name
};

// One line of the review: what would go, and why.
struct ReviewItem {
    QString path;
    MatchReason reason = MatchReason::name;
    QString why;     // in words
    QString caution; // what speaks against it; mostly it starts unticked then
    std::optional<LibraryKind> library;
    std::optional<qint64> bytes; // nothing while it is being measured
    bool isTicked = false;
    bool isFixed = false; // the application itself cannot be unticked

    bool operator==(const ReviewItem &) const = default;
};

struct UninstallReview {
    AppInfo app;
    UninstallMode mode = UninstallMode::full;
    bool isRunning = false; // the application is open at this moment
    QStringList packages;   // what the package manager removes with it
    QList<ReviewItem> items;

    bool operator==(const UninstallReview &) const = default;
};

// One thing that was moved and can go back.
struct MovedItem {
    QString original;
    QString trashed;       // empty when nobody told where it lies
    QString identity = {}; // of what lies there, as itemIdentity() tells; empty when unknown

    bool operator==(const MovedItem &) const = default;
};

struct FailedItem {
    QString path;
    QString reason;

    bool operator==(const FailedItem &) const = default;
};

// A past uninstall, kept on disk.
struct UninstallRecord {
    QString id;
    QString name;
    QDateTime at;
    QList<MovedItem> moved;
    QList<FailedItem> failed;
    QString removedPackage; // went through its manager and cannot be put back

    bool operator==(const UninstallRecord &) const = default;
};

QJsonObject toJson(const UninstallRecord &record);
std::optional<UninstallRecord> uninstallRecordFromJson(const QJsonObject &json);

} // namespace velbrix
