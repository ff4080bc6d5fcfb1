#pragma once

#include <QColor>
#include <QList>
#include <QString>
#include <QStringList>

#include <array>
#include <functional>

namespace velbrix {

enum class PrivacyConsentKind {
    firstLaunch,
    screenRecording,
    microphone,
    systemAudio,
    videoWallpaper,
    fileAccess,
    systemCleanup,
    uninstall
};

inline constexpr std::array allPrivacyConsentKinds = {
    PrivacyConsentKind::firstLaunch,   PrivacyConsentKind::screenRecording, PrivacyConsentKind::microphone,
    PrivacyConsentKind::systemAudio,   PrivacyConsentKind::videoWallpaper,  PrivacyConsentKind::fileAccess,
    PrivacyConsentKind::systemCleanup, PrivacyConsentKind::uninstall};

// The stored name: the case's own.
QString rawValue(PrivacyConsentKind kind);

// What a feature tells the user before it does for the first time what needs
// their consent. Two notices are equal when their ids are.
struct FeaturePrivacyNotice {
    QString id;
    PrivacyConsentKind kind = PrivacyConsentKind::firstLaunch;
    QString icon; // SF Symbol name
    QList<QColor> colors;
    QString title;
    QString message;
    QStringList details;
    std::function<void()> onConfirm;
    std::function<void()> onCancel;

    bool operator==(const FeaturePrivacyNotice &other) const { return id == other.id; }
};

enum class NoticeTint { red, orange, blue, violet };

// Of that kind, without its actions: what a tool says of itself.
FeaturePrivacyNotice privacyNotice(PrivacyConsentKind kind, const QString &icon, NoticeTint tint,
                                   const QString &title, const QString &message,
                                   const QStringList &details = {});

// The notice that the tool with the feature has of it.
FeaturePrivacyNotice featurePrivacyNotice(PrivacyConsentKind kind);
// For a recording that starts from the hot key, where no panel is visible.
FeaturePrivacyNotice quickRecordingNotice();

// The statement of the first launch and, reopened from the tray, its review.
struct PrivacyStatement {
    QString title;
    QString message;
    QStringList details;
    QString confirm;
};
PrivacyStatement firstLaunchStatement(int remainingSeconds);
PrivacyStatement reviewedStatement();

} // namespace velbrix
