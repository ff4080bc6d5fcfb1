#pragma once

#include "foundation/Published.h"
#include "platform/Permissions.h"

#include <QCoroTask>
#include <QObject>

namespace velbrix {

class RecorderLog;
class ScreenCapture;

// Whether the system lets the recorder see the screen and hear the microphone.
class RecorderAccess final : public QObject {
    Q_OBJECT
    VELB_PUBLISHED(RecorderAccess, bool, hasPermission, false)
    VELB_PUBLISHED(RecorderAccess, bool, hasMicPermission, false)
    VELB_PUBLISHED(RecorderAccess, bool, showPermissionDialog, false)

public:
    RecorderAccess(Permissions &permissions, ScreenCapture &capture, RecorderLog &log,
                   QObject *parent = nullptr);

    // Fetches what may be captured: only that tells the truth.
    QCoro::Task<bool> checkPermission();
    QCoro::Task<bool> requestPermission();
    void dismissPermissionDialog() { _showPermissionDialog = false; }

    bool checkMicPermission();
    // Asks while the user has not decided; opens the system's page when denied.
    QCoro::Task<bool> requestMicPermission();

    // Why there is no permission for the screen, in words for the user.
    QString screenRefusal() const;
    // A remark for the microphone switch; empty when there is nothing to say.
    QString microphoneNote() const;
    bool openScreenSettings();

private:
    bool micOutcome(bool granted);

    Permissions &_permissions;
    ScreenCapture &_capture;
    RecorderLog &_log;
};

} // namespace velbrix
