#include "capture/RecorderPreferences.h"

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
    _outputDir = QDir::homePath() + u"/Desktop"_s;
    _screenshotOutputDir = QDir::homePath() + u"/Desktop"_s;
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
    take(screenshotDestinationFromRawValue(
             _settings.string(key(u"screenshotDestination")).value_or(QString())),
         _screenshotDestination);
    take(folder(_settings.string(key(u"screenshotOutputDir"))), _screenshotOutputDir);
    take(_settings.boolean(key(u"screenshotIgnoreSelfWindows")), _screenshotIgnoreSelfWindows);
}

void RecorderPreferences::setRecordMode(RecordMode mode)
{
    _recordMode = mode;
    _settings.set(key(u"mode"), rawValue(mode));
}

void RecorderPreferences::setFpsOption(RecordFPS fps)
{
    _fpsOption = fps;
    _settings.set(key(u"fps"), framesPerSecond(fps));
}

void RecorderPreferences::setQualityOption(RecordQuality quality)
{
    _qualityOption = quality;
    _settings.set(key(u"quality"), rawValue(quality));
}

void RecorderPreferences::setOutputDir(const QString &folder)
{
    _outputDir = folder;
    _settings.set(key(u"outputDir"), folder);
}

void RecorderPreferences::setRecordSystemAudio(bool on)
{
    _recordSystemAudio = on;
    _settings.set(key(u"recordSystemAudio"), on);
}

void RecorderPreferences::setRecordMicrophone(bool on)
{
    _recordMicrophone = on;
    _settings.set(key(u"recordMicrophone"), on);
}

void RecorderPreferences::setIgnoreSelfWindows(bool on)
{
    _ignoreSelfWindows = on;
    _settings.set(key(u"ignoreSelfWindows"), on);
}

void RecorderPreferences::setSelectedSpeakerID(const QString &id)
{
    _selectedSpeakerID = id;
    _settings.set(key(u"speakerID"), id);
}

void RecorderPreferences::setSelectedMicrophoneID(const QString &id)
{
    _selectedMicrophoneID = id;
    _settings.set(key(u"microphoneID"), id);
}

void RecorderPreferences::setMisTouchProtectionEnabled(bool on)
{
    _misTouchProtectionEnabled = on;
    _settings.set(key(u"misTouchProtectionEnabled"), on);
}

void RecorderPreferences::setMisTouchIntervalMinutes(double minutes)
{
    _misTouchIntervalMinutes = clampedInterval(minutes);
    _settings.set(key(u"misTouchIntervalMinutes"), _misTouchIntervalMinutes.value());
}

void RecorderPreferences::setScreenshotDestination(ScreenshotDestination destination)
{
    _screenshotDestination = destination;
    _settings.set(key(u"screenshotDestination"), rawValue(destination));
}

void RecorderPreferences::setScreenshotOutputDir(const QString &folder)
{
    _screenshotOutputDir = folder;
    _settings.set(key(u"screenshotOutputDir"), folder);
}

void RecorderPreferences::setScreenshotIgnoreSelfWindows(bool on)
{
    _screenshotIgnoreSelfWindows = on;
    _settings.set(key(u"screenshotIgnoreSelfWindows"), on);
}

} // namespace velbrix
