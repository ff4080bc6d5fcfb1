#pragma once

#include "capture/RecordingPlan.h"

#include <QObject>

#include <functional>

namespace velbrix {

class PrivacyManager;
class ScreenRecorderController;
struct FeaturePrivacyNotice;

// What the user can do with the recorder, each with the consent it needs.
// Shared by page, hot key, tray and command line.
class RecordingActions final : public QObject {
    Q_OBJECT

public:
    RecordingActions(ScreenRecorderController &recorder, PrivacyManager &privacy, QObject *parent = nullptr);

    // Nothing is recorded before the first launch's statement is accepted:
    // then these only ask for the statement.
    void startFromPanel(const RecordingWishes &wishes = {});
    // Stops a recording, or starts one in the panel's mode.
    void toggleFromPanel();
    // Stops a recording, or starts one of the whole screen.
    void toggleQuickly();

    void setSystemAudio(bool on);
    void setMicrophone(bool on);

private:
    bool stopIfRunning();
    void guarded(const FeaturePrivacyNotice &notice, std::function<void()> start);

    ScreenRecorderController &_recorder;
    PrivacyManager &_privacy;
};

} // namespace velbrix
