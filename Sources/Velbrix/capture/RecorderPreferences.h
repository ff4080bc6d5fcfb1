#pragma once

#include "capture/RecorderOptions.h"
#include "foundation/Published.h"

#include <QJsonValue>
#include <QObject>

namespace velbrix {

class SettingsStore;

// The recording options that outlive the program. A setter that changes a
// value stores it; the store gathers the writes of a burst.
class RecorderPreferences final : public QObject {
    Q_OBJECT
    VELB_PUBLISHED(RecorderPreferences, RecordMode, recordMode, RecordMode::fullScreen)
    VELB_PUBLISHED(RecorderPreferences, RecordFPS, fpsOption, RecordFPS::fps60)
    VELB_PUBLISHED(RecorderPreferences, RecordQuality, qualityOption, RecordQuality::original)
    VELB_PUBLISHED(RecorderPreferences, QString, outputDir)
    VELB_PUBLISHED(RecorderPreferences, bool, recordSystemAudio, true)
    VELB_PUBLISHED(RecorderPreferences, bool, recordMicrophone, false)
    VELB_PUBLISHED(RecorderPreferences, bool, ignoreSelfWindows, false)
    VELB_PUBLISHED(RecorderPreferences, QString, selectedSpeakerID)
    VELB_PUBLISHED(RecorderPreferences, QString, selectedMicrophoneID)
    VELB_PUBLISHED(RecorderPreferences, bool, misTouchProtectionEnabled, true)
    VELB_PUBLISHED(RecorderPreferences, double, misTouchIntervalMinutes, misTouchMinutesDefault)

public:
    static constexpr double misTouchMinutesMin = 1.0;
    static constexpr double misTouchMinutesMax = 120.0;
    static constexpr double misTouchMinutesDefault = 30.0;

    explicit RecorderPreferences(SettingsStore &settings, QObject *parent = nullptr);

    // Takes each stored value that is present and valid; the others keep
    // their initial values. The interval is clamped into its bounds.
    void loadSettings();

    void setRecordMode(RecordMode mode);
    void setFpsOption(RecordFPS fps);
    void setQualityOption(RecordQuality quality);
    void setOutputDir(const QString &folder);
    void setRecordSystemAudio(bool on);
    void setRecordMicrophone(bool on);
    void setIgnoreSelfWindows(bool on);
    void setSelectedSpeakerID(const QString &id);
    void setSelectedMicrophoneID(const QString &id);
    void setMisTouchProtectionEnabled(bool on);
    void setMisTouchIntervalMinutes(double minutes);

private:
    template <typename Property, typename Value>
    void change(Property &property, const Value &value, const char16_t *name, const QJsonValue &stored);

    SettingsStore &_settings;
};

} // namespace velbrix
