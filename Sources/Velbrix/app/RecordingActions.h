#pragma once

#include <QObject>

namespace velbrix {

class PrivacyManager;
class ScreenRecorderController;

// What the user can do with the recorder, each with the consent it needs.
// Shared by page, hot key, tray and command line.
class RecordingActions final : public QObject {
    Q_OBJECT

public:
    RecordingActions(ScreenRecorderController &recorder, PrivacyManager &privacy, QObject *parent = nullptr);

    // Stops a recording, or starts one in the panel's mode.
    void toggleFromPanel();
    // Stops a recording, or starts one of the whole screen.
    void toggleQuickly();
    void stop();

    void setSystemAudio(bool on);
    void setMicrophone(bool on);

private:
    bool stopIfRunning();

    ScreenRecorderController &_recorder;
    PrivacyManager &_privacy;
};

} // namespace velbrix
