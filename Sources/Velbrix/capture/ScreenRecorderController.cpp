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
      _unfinished(settings, ports.movies, clock, _log),
      _session(ports.capture, ports.movies, _unfinished, clock, _log),
      _finished(_session, ports.probe, ports.trash)
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

void ScreenRecorderController::start(const RecordingWishes &wishes)
{
    if (!_isStarting && !_session.isRecording() && !_session.isProcessing())
        runStart(request(wishes));
}

QString ScreenRecorderController::trayTitle() const
{
    return isRecording() ? u"停止当前录制"_s : u"开始录制（全屏）"_s;
}

QCoro::Task<> ScreenRecorderController::runStart(RecordingRequest request)
{
    const QPointer self(this);
    _isStarting = true;
    _stopWanted = false;
    _log.live().reset();
    _log.append(u"====== 开始录制 ======"_s);
    _log.append(
        u"模式=%1 fps=%2 画质=%3 忽略本应用窗口=%4 系统音频=%5 麦克风=%6"_s.arg(rawValue(request.mode))
            .arg(framesPerSecond(request.fps))
            .arg(rawValue(request.quality), log::text(request.ignoreSelfWindows),
                 log::text(request.systemAudio), log::text(request.microphone)));
    if (!_access.hasPermission())
        co_await _access.checkPermission();
    if (!self)
        co_return;
    _access.checkMicPermission();
    if (const QString reason = refusal(request); !reason.isEmpty()) {
        _session.refuse(reason);
        _isStarting = false;
        co_return;
    }
    co_await chooseDevices(request.systemAudio, request.microphone);
    if (!self)
        co_return;
    if (request.microphone)
        request.microphoneDeviceId = microphone();
    if (_stopWanted) {
        _session.noteCalledOff();
        _isStarting = false;
        co_return;
    }
    _session.start(request);
}

QCoro::Task<> ScreenRecorderController::chooseDevices(bool speaker, bool microphone)
{
    const QPointer self(this);
    const bool choosesSpeaker = speaker && !_preferences.selectedSpeakerID().isEmpty();
    if (!choosesSpeaker && !(microphone && !_preferences.selectedMicrophoneID().isEmpty()))
        co_return;
    co_await _devices.refreshAudioDevices();
    if (!self || !choosesSpeaker)
        co_return;
    if (const QString name = _devices.routeToSelectedSpeaker(); !name.isEmpty())
        _log.append(u"系统音频目标扬声器:"_s + name);
    else if (!_devices.speakerDevices().isEmpty())
        _log.warn(u"所选扬声器不在，使用系统默认输出"_s);
}

std::optional<QString> ScreenRecorderController::microphone()
{
    const CaptureMicrophone chosen = _devices.microphoneForCapture();
    if (!chosen.problem.isEmpty())
        _log.warn(chosen.problem);
    return chosen.id;
}

QString ScreenRecorderController::refusal(const RecordingRequest &request) const
{
    if (!_access.hasPermission())
        return _access.screenRefusal();
    if (request.mode == RecordMode::window && !request.windowId)
        return u"请先选择要录制的窗口"_s;
    if (request.microphone && !_access.hasMicPermission())
        return u"需要麦克风权限才能录制麦克风"_s;
    if (const auto folder = checkOutputFolder(request.outputDir); !folder)
        return folder.error().message;
    return {};
}

RecordingRequest ScreenRecorderController::request(const RecordingWishes &wishes) const
{
    RecordingRequest request;
    request.mode = wishes.mode.value_or(_preferences.recordMode());
    request.fps = wishes.fps.value_or(_preferences.fpsOption());
    request.quality = wishes.quality.value_or(_preferences.qualityOption());
    request.ignoreSelfWindows = _preferences.ignoreSelfWindows();
    request.systemAudio = _preferences.recordSystemAudio();
    request.microphone = _preferences.recordMicrophone();
    request.windowId = wishes.windowId;
    if (const auto id = _windows.selectedWindowID(); id && !request.windowId)
        request.windowId = id->toUInt();
    request.displayId = wishes.displayId;
    request.outputDir = _preferences.outputDir();
    return request;
}

} // namespace velbrix
