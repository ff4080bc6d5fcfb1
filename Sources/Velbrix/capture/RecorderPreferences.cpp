#include "capture/RecorderPreferences.h"

#include "capture/RecordingFile.h"
#include "foundation/SettingsStore.h"

#include <QDir>

#include <algorithm>
#include <cmath>

using namespace Qt::StringLiterals;

namespace velbrix {
namespace {

QString key(const char16_t *name)
{
    static const QString udPrefix = u"Velbrix_ScreenRecord_"_s;
    return udPrefix + QStringView(name).toString();
}

double clampedInterval(double minutes)
{
    if (std::isnan(minutes))
        return RecorderPreferences::misTouchMinutesDefault;
    return std::clamp(minutes, RecorderPreferences::misTouchMinutesMin,
                      RecorderPreferences::misTouchMinutesMax);
}

// A folder setting that is not an absolute path would follow the working directory.
std::optional<QString> folder(const std::optional<QString> &stored)
{
    return stored && QDir::isAbsolutePath(*stored) ? stored : std::nullopt;
}

} // namespace

RecorderPreferences::RecorderPreferences(SettingsStore &settings, QObject *parent)
    : QObject(parent), _settings(settings)
{
    _outputDir = desktopFolder();
}

void RecorderPreferences::loadSettings()
{
    const auto take = [](auto &&stored, auto &property) {
        if (stored)
            property = *stored;
    };
    take(recordModeFromRawValue(_settings.string(key(u"mode")).value_or(QString())), _recordMode);
    take(recordFPSFromInteger(_settings.integer(key(u"fps")).value_or(0)), _fpsOption);
    take(recordQualityFromRawValue(_settings.string(key(u"quality")).value_or(QString())), _qualityOption);
    take(folder(_settings.string(key(u"outputDir"))), _outputDir);
    take(_settings.string(key(u"speakerID")), _selectedSpeakerID);
    take(_settings.string(key(u"microphoneID")), _selectedMicrophoneID);
    take(_settings.boolean(key(u"recordSystemAudio")), _recordSystemAudio);
    take(_settings.boolean(key(u"recordMicrophone")), _recordMicrophone);
    take(_settings.boolean(key(u"ignoreSelfWindows")), _ignoreSelfWindows);
    take(_settings.boolean(key(u"misTouchProtectionEnabled")), _misTouchProtectionEnabled);
    if (const auto minutes = _settings.real(key(u"misTouchIntervalMinutes")))
        _misTouchIntervalMinutes = clampedInterval(*minutes);
}

// A page that only shows a value must not store it.
template <typename Property, typename Value>
void RecorderPreferences::change(Property &property, const Value &value, const char16_t *name,
                                 const QJsonValue &stored)
{
    if (property.value() == value)
        return;
    property = value;
    _settings.set(key(name), stored);
}

void RecorderPreferences::setRecordMode(RecordMode mode)
{
    change(_recordMode, mode, u"mode", rawValue(mode));
}

void RecorderPreferences::setFpsOption(RecordFPS fps)
{
    change(_fpsOption, fps, u"fps", framesPerSecond(fps));
}

void RecorderPreferences::setQualityOption(RecordQuality quality)
{
    change(_qualityOption, quality, u"quality", rawValue(quality));
}

void RecorderPreferences::setOutputDir(const QString &folder)
{
    change(_outputDir, folder, u"outputDir", folder);
}

void RecorderPreferences::setRecordSystemAudio(bool on)
{
    change(_recordSystemAudio, on, u"recordSystemAudio", on);
}

void RecorderPreferences::setRecordMicrophone(bool on)
{
    change(_recordMicrophone, on, u"recordMicrophone", on);
}

void RecorderPreferences::setIgnoreSelfWindows(bool on)
{
    change(_ignoreSelfWindows, on, u"ignoreSelfWindows", on);
}

void RecorderPreferences::setSelectedSpeakerID(const QString &id)
{
    change(_selectedSpeakerID, id, u"speakerID", id);
}

void RecorderPreferences::setSelectedMicrophoneID(const QString &id)
{
    change(_selectedMicrophoneID, id, u"microphoneID", id);
}

void RecorderPreferences::setMisTouchProtectionEnabled(bool on)
{
    change(_misTouchProtectionEnabled, on, u"misTouchProtectionEnabled", on);
}

void RecorderPreferences::setMisTouchIntervalMinutes(double minutes)
{
    change(_misTouchIntervalMinutes, clampedInterval(minutes), u"misTouchIntervalMinutes",
           clampedInterval(minutes));
}

} // namespace velbrix
