#include "capture/ScreenRecorderController.h"

#include "capture/RecordingFile.h"
#include "foundation/Log.h"

#include <QPointer>

using namespace Qt::StringLiterals;

namespace velbrix {
ScreenRecorderController::ScreenRecorderController(Ports ports, SettingsStore &settings, Clock &clock,
                                                   QObject *parent)
    : QObject(parent),
      _preferences(settings),
      _access(ports.permissions, ports.capture, _log),
      _devices(ports.audio, _preferences, _log),
      _windows(ports.capture, _log),
      _unfinished(settings, ports.movies, _log),
      _session(ports.capture, ports.movies, _unfinished, clock, _log)
{
    connect(&_session, &RecordingSession::isProcessingChanged, this, [this] {
        if (!_session.isProcessing())
            _isStarting = false;
    });
    _job.follow(*this, &ScreenRecorderController::isStartingChanged);
    _job.follow(_session, &RecordingSession::isRecordingChanged, &RecordingSession::isProcessingChanged);
}

Job::State ScreenRecorderController::jobState() const
{
    return {.what = isRecording() ? u"录制中"_s : QString(), .isBusy = isRecording() || isProcessing()};
}

void ScreenRecorderController::stopIfRunning()
{
    if (isRecording() || isProcessing())
        stop();
}

void ScreenRecorderController::stop()
{
    _stopWanted = true;
    _session.stop();
}

void ScreenRecorderController::setUp()
{
    _preferences.loadSettings();
    _log.append(u"已恢复上次录制配置"_s);
    _unfinished.findLeftovers();
}

void ScreenRecorderController::start()
{
    startIn(_preferences.recordMode());
}

void ScreenRecorderController::startFullScreen()
{
    startIn(RecordMode::fullScreen);
}

QString ScreenRecorderController::trayTitle() const
{
    return isRecording() ? u"停止当前录制"_s : u"开始录制（全屏）"_s;
}

QCoro::Task<> ScreenRecorderController::startIn(RecordMode mode)
{
    if (_isStarting || _session.isRecording() || _session.isProcessing())
        co_return;
    const QPointer self(this);
    _isStarting = true;
    _stopWanted = false;
    _log.append(u"====== 开始录制 ======"_s);
    _log.append(u"模式=%1 fps=%2 画质=%3 忽略本应用窗口=%4 系统音频=%5 麦克风=%6"_s.arg(rawValue(mode))
                    .arg(framesPerSecond(_preferences.fpsOption()))
                    .arg(rawValue(_preferences.qualityOption()), log::text(_preferences.ignoreSelfWindows()),
                         log::text(_preferences.recordSystemAudio()),
                         log::text(_preferences.recordMicrophone())));
    if (!_access.hasPermission())
        co_await _access.checkPermission();
    if (!self)
        co_return;
    _access.checkMicPermission();
    if (const QString reason = refusal(mode); !reason.isEmpty()) {
        _session.refuse(reason);
        _isStarting = false;
        co_return;
    }
    if (_preferences.recordSystemAudio() && !_preferences.selectedSpeakerID().isEmpty()) {
        co_await _devices.refreshAudioDevices();
        if (!self)
            co_return;
        if (const QString speaker = _devices.routeToSelectedSpeaker(); !speaker.isEmpty())
            _log.append(u"系统音频目标扬声器:"_s + speaker);
        else if (!_devices.speakerDevices().isEmpty())
            _log.append(u"⚠️ 所选扬声器不在，使用系统默认输出"_s);
    }
    _session.start(request(mode));
    if (_stopWanted)
        _session.stop();
}

QString ScreenRecorderController::refusal(RecordMode mode) const
{
    if (!_access.hasPermission())
        return _access.screenRefusal();
    if (mode == RecordMode::window && !_windows.selectedWindowID())
        return u"请先选择要录制的窗口"_s;
    if (_preferences.recordMicrophone() && !_access.hasMicPermission())
        return u"需要麦克风权限才能录制麦克风"_s;
    if (const auto folder = checkOutputFolder(_preferences.outputDir()); !folder)
        return folder.error().message;
    return {};
}

RecordingRequest ScreenRecorderController::request(RecordMode mode) const
{
    RecordingRequest request;
    request.mode = mode;
    request.fps = _preferences.fpsOption();
    request.quality = _preferences.qualityOption();
    request.ignoreSelfWindows = _preferences.ignoreSelfWindows();
    request.systemAudio = _preferences.recordSystemAudio();
    request.microphone = _preferences.recordMicrophone();
    request.microphoneDeviceId = _devices.microphoneForCapture();
    if (const auto id = _windows.selectedWindowID())
        request.windowId = id->toUInt();
    request.outputDir = _preferences.outputDir();
    return request;
}

} // namespace velbrix
