#include "views/recorder/RecordAudioCard.h"

#include "app/AppServices.h"
#include "app/RecordingActions.h"
#include "views/Follow.h"
#include "views/components/SettingRow.h"
#include "views/components/Switch.h"
#include "views/recorder/DeviceList.h"

using namespace Qt::StringLiterals;

namespace velbrix {

RecordAudioCard::RecordAudioCard(const ViewContext &context, QWidget *parent)
    : Card(parent),
      _context(context),
      _speakers(new DeviceList(u"speakers"_s, u"未发现扬声器"_s)),
      _microphones(new DeviceList(u"microphones"_s, u"未发现麦克风"_s))
{
    addSystemAudio();
    addMicrophone();
    const auto again = [this] { showDevices(); };
    RecorderDevices &devices = context.services.recorder.devices();
    connect(&devices, &RecorderDevices::speakerDevicesChanged, this, again);
    connect(&devices, &RecorderDevices::microphoneDevicesChanged, this, again);
    connect(&devices, &RecorderDevices::problemChanged, this, again);
    RecorderPreferences &preferences = context.services.recorder.preferences();
    connect(&preferences, &RecorderPreferences::selectedSpeakerIDChanged, this, again);
    connect(&preferences, &RecorderPreferences::selectedMicrophoneIDChanged, this, again);
    connect(&preferences, &RecorderPreferences::recordSystemAudioChanged, this, again);
    connect(&preferences, &RecorderPreferences::recordMicrophoneChanged, this, again);
    follow(context.services.recorder.access(), &RecorderAccess::hasMicPermissionChanged, this,
           [this] { showNote(); });
    showDevices();
}

void RecordAudioCard::addSystemAudio()
{
    RecorderPreferences &preferences = _context.services.recorder.preferences();
    auto *sound = new Switch(_context.theme, u"recordSystemAudio"_s);
    _systemRow = new SettingRow(u"系统音频"_s, u"捕获当前系统混音；点选扬声器会切换系统默认输出"_s, sound);
    addRow(_systemRow);
    addDetail(_speakers);
    connect(sound, &Switch::wanted, this,
            [this](bool on) { _context.services.recordingActions.setSystemAudio(on); });
    follow(preferences, &RecorderPreferences::recordSystemAudioChanged, this,
           [sound, &preferences] { sound->setOn(preferences.recordSystemAudio()); });
    connect(_speakers, &DeviceList::wanted, this,
            [this](const QString &id) { _context.services.recorder.devices().selectSpeaker(id); });
}

void RecordAudioCard::addMicrophone()
{
    RecorderPreferences &preferences = _context.services.recorder.preferences();
    auto *voice = new Switch(_context.theme, u"recordMicrophone"_s);
    _microphoneRow = new SettingRow(u"麦克风"_s, u"把麦克风的声音录成单独的音轨"_s, voice);
    addRow(_microphoneRow);
    addDetail(_microphones);
    connect(voice, &Switch::wanted, this,
            [this](bool on) { _context.services.recordingActions.setMicrophone(on); });
    follow(preferences, &RecorderPreferences::recordMicrophoneChanged, this,
           [voice, &preferences] { voice->setOn(preferences.recordMicrophone()); });
    connect(_microphones, &DeviceList::wanted, this,
            [this](const QString &id) { _context.services.recorder.devices().selectMicrophone(id); });
}

void RecordAudioCard::showDevices()
{
    ScreenRecorderController &recorder = _context.services.recorder;
    const RecorderPreferences &preferences = recorder.preferences();
    const RecorderDevices &devices = recorder.devices();
    _speakers->show(devices.speakerDevices(), preferences.selectedSpeakerID());
    _microphones->show(devices.microphoneDevices(), preferences.selectedMicrophoneID());
    _speakers->setVisible(preferences.recordSystemAudio());
    _microphones->setVisible(preferences.recordMicrophone());
    _systemRow->setNote(devices.problem(), u"warning"_s);
}

void RecordAudioCard::showNote()
{
    _microphoneRow->setNote(_context.services.recorder.access().microphoneNote(), u"note"_s);
}

} // namespace velbrix
