#include "app/AppServices.h"
#include "app/Banners.h"
#include "app/Tool.h"
#include "app/TrayController.h"
#include "foundation/Awaitables.h"
#include "foundation/Log.h"
#include "platform/Platform.h"

#include <QCoreApplication>
#include <QFileInfo>
#include <QJsonArray>

using namespace Qt::StringLiterals;

namespace velbrix {
namespace {

QString reasonOr(const QString &reason, const QString &otherwise)
{
    return reason.isEmpty() ? otherwise : reason;
}

CommandReply started(AppServices &services)
{
    const RecordingSession &session = services.recorder.session();
    if (!session.isRecording())
        return CommandReply::refusal(reasonOr(session.lastFailure(), u"录制没有开始"_s));
    const QString path = session.outputURL().value_or(QString());
    return {exitcode::done, u"已开始录制：%1"_s.arg(path), {{u"recording"_s, true}, {u"file"_s, path}}};
}

CommandReply stopped(AppServices &services)
{
    const RecordingSession &session = services.recorder.session();
    const auto movie = session.finishedMovie();
    if (!movie)
        return CommandReply::refusal(reasonOr(session.lastFailure(), u"没有录下影片"_s));
    const qint64 bytes = QFileInfo(*movie).size();
    return {exitcode::done,
            u"已保存：%1"_s.arg(*movie),
            {{u"recording"_s, false}, {u"file"_s, *movie}, {u"bytes"_s, bytes}}};
}

QCoro::Task<CommandReply> start(AppServices &services, std::function<void()> act)
{
    if (services.recorder.isRecording() || services.recorder.isProcessing())
        co_return CommandReply::refusal(u"录制已在进行中"_s);
    act();
    if (const QString reason = services.privacy.missingConsent(PrivacyConsentKind::screenRecording);
        !reason.isEmpty())
        co_return CommandReply::refusal(reason);
    while (services.recorder.isStarting())
        co_await nextSignal(services.recorder, &ScreenRecorderController::isStartingChanged);
    co_return started(services);
}

QCoro::Task<CommandReply> stop(AppServices &services)
{
    RecordingSession &session = services.recorder.session();
    if (!session.isRecording() && !services.recorder.isStarting())
        co_return CommandReply::refusal(u"当前没有录制"_s);
    services.recorder.stop();
    while (services.recorder.isStarting())
        co_await nextSignal(services.recorder, &ScreenRecorderController::isStartingChanged);
    while (session.isRecording() || session.isProcessing())
        co_await nextSignal(session, &RecordingSession::isProcessingChanged);
    co_return stopped(services);
}

QJsonObject toJson(const AudioDeviceItem &device)
{
    return {{u"id"_s, device.id}, {u"name"_s, device.name}, {u"default"_s, device.isDefault}};
}

QString listed(const QString &heading, const QList<AudioDeviceItem> &devices, const QString &none)
{
    QStringList lines = {heading};
    for (const AudioDeviceItem &device : devices)
        lines << u"  %1%2  %3"_s.arg(device.isDefault ? u"* "_s : u"  "_s, device.name, device.id);
    if (devices.isEmpty())
        lines << u"  "_s + none;
    return lines.join(u'\n');
}

QCoro::Task<CommandReply> listDevices(AppServices &services)
{
    RecorderDevices &devices = services.recorder.devices();
    co_await devices.refreshAudioDevices();
    if (!devices.problem().isEmpty())
        co_return CommandReply::refusal(devices.problem());
    CommandReply reply;
    QJsonArray speakers;
    QJsonArray microphones;
    for (const AudioDeviceItem &device : devices.speakerDevices())
        speakers.append(toJson(device));
    for (const AudioDeviceItem &device : devices.microphoneDevices())
        microphones.append(toJson(device));
    reply.data = {{u"speakers"_s, speakers}, {u"microphones"_s, microphones}};
    reply.text = listed(u"扬声器"_s, devices.speakerDevices(), u"未发现扬声器"_s) + u'\n' +
                 listed(u"麦克风"_s, devices.microphoneDevices(), u"未发现麦克风"_s);
    co_return reply;
}

QCoro::Task<CommandReply> listWindows(AppServices &services)
{
    const auto content = co_await services.platform.screenCapture->shareableContent();
    if (!content)
        co_return CommandReply::refusal(content.error().message);
    CommandReply reply;
    QJsonArray list;
    QStringList lines;
    for (const WindowItem &window : recordableWindows(content->windows, QCoreApplication::applicationPid())) {
        lines << u"%1  %2  %3"_s.arg(window.id, window.appName, window.title);
        list.append(QJsonObject{{u"id"_s, window.id},
                                {u"title"_s, window.title},
                                {u"app"_s, window.appName},
                                {u"width"_s, window.frame.width()},
                                {u"height"_s, window.frame.height()}});
    }
    reply.text = lines.isEmpty() ? u"没有找到窗口"_s : lines.join(u'\n');
    reply.data = {{u"windows"_s, list}};
    co_return reply;
}

QList<Command> commands()
{
    return {
        {{.words = u"record start"_s, .help = u"按录制面板的设置开始录制"_s},
         [](AppServices &services, const ParsedCommand &) {
             return start(services, [&services] { services.recordingActions.startFromPanel(); });
         }},
        {{.words = u"record stop"_s, .help = u"停止录制并等待文件校验完成"_s},
         [](AppServices &services, const ParsedCommand &) { return stop(services); }},
        {{.words = u"record toggle"_s, .help = u"开始全屏录制，或停止当前录制"_s},
         [](AppServices &services, const ParsedCommand &) {
             if (services.recorder.isRecording())
                 return stop(services);
             return start(services, [&services] { services.recordingActions.toggleQuickly(); });
         }},
        {{.words = u"record list-windows"_s, .help = u"列出可录制的窗口"_s},
         [](AppServices &services, const ParsedCommand &) { return listWindows(services); }},
        {{.words = u"record list-devices"_s, .help = u"列出扬声器与麦克风"_s},
         [](AppServices &services, const ParsedCommand &) { return listDevices(services); }},
    };
}

QList<FeaturePrivacyNotice> consents()
{
    return {
        privacyNotice(
            PrivacyConsentKind::screenRecording, u"record.circle"_s, NoticeTint::red, u"屏幕录制隐私确认"_s,
            u"开始录制前请确认：本功能会捕获屏幕画面，并可能录制系统音频/麦克风音频。"_s,
            {u"默认全屏录制"_s, u"可能捕获系统音频/麦克风（取决于你的配置）"_s,
             u"文件仅保存到你设置的本地目录"_s, u"不会自动上传录制内容"_s, u"可随时从菜单栏停止录制"_s}),
        privacyNotice(PrivacyConsentKind::microphone, u"mic.fill"_s, NoticeTint::orange, u"麦克风隐私确认"_s,
                      u"开启后，录制可能会采集麦克风声音。录音仅保存在本地，不会上传。是否同意？"_s),
        privacyNotice(PrivacyConsentKind::systemAudio, u"speaker.wave.2.fill"_s, NoticeTint::blue,
                      u"系统音频隐私确认"_s,
                      u"开启后，录制会捕获系统播放的声音。音频仅保存在本地，不会上传。是否同意？"_s),
    };
}

TraySection traySection(AppServices &services)
{
    const ScreenRecorderController &recorder = services.recorder;
    return {u"屏幕录制"_s,
            {{.id = u"recordToggle"_s,
              .title = recorder.trayTitle(),
              .keyEquivalent = u"⌘⇧R"_s,
              .act = [&services] { services.recordingActions.toggleQuickly(); }},
             {.id = u"recordPanel"_s,
              .title = u"打开录制面板"_s,
              .act = [&services] { services.router.open(u"recorder"_s); }}},
            {log::text(recorder.isRecording()), recorder.trayTitle()}};
}

void followTray(AppServices &services, TrayController &tray)
{
    QObject::connect(&services.recorder.session(), &RecordingSession::isRecordingChanged, &tray,
                     [&tray] { tray.refresh(false); });
}

ToolStatus status(AppServices &services)
{
    const bool isRecording = services.recorder.isRecording();
    const RecordingSession &session = services.recorder.session();
    const RecordLiveUI &live = services.recorder.log().live();
    ToolStatus status;
    status.line = isRecording
                      ? u"录制：进行中，%1 秒，%2 帧"_s.arg(live.elapsedSeconds()).arg(live.frameCountUI())
                      : u"录制：未开始"_s;
    status.data = {{u"recording"_s, isRecording},
                   {u"frames"_s, live.frameCountUI()},
                   {u"elapsedSeconds"_s, live.elapsedSeconds()}};
    if (const auto path = session.outputURL())
        status.data[u"file"_s] = *path;
    if (const auto path = session.finishedMovie())
        status.data[u"lastMovie"_s] = *path;
    if (!session.lastFailure().isEmpty())
        status.data[u"lastFailure"_s] = session.lastFailure();
    return status;
}

void tellNews(AppServices &services, Banners &banners)
{
    const RecordingSession &session = services.recorder.session();
    QObject::connect(&session, &RecordingSession::lastFailureChanged, &banners, [&banners, &session] {
        if (!session.lastFailure().isEmpty())
            banners.warn(u"屏幕录制"_s, session.lastFailure());
    });
    QObject::connect(&session, &RecordingSession::finishedMovieChanged, &banners, [&banners, &session] {
        if (const auto movie = session.finishedMovie())
            banners.show(u"录制已保存"_s, QFileInfo(*movie).fileName(), u"checkmark.circle.fill"_s,
                         ToastTone::good);
    });
    if (!services.recorder.unfinished().leftovers().isEmpty())
        banners.show(u"发现未正常结束的录制"_s, u"可以在录制面板里修复。"_s, u"film"_s);
}

} // namespace

Tool recorderTool()
{
    return {
        .identifier = u"recorder"_s,
        .title = u"屏幕录制"_s,
        .symbol = u"record.circle"_s,
        .group = u"录制"_s,
        .commands = commands(),
        .notices = consents(),
        .hotkeys = {{HotkeyAction::recordToggle,
                     [](AppServices &services) { services.recordingActions.toggleQuickly(); }}},
        .job = [](AppServices &services) { return &services.recorder.job(); },
        .tray = traySection,
        .followTray = followTray,
        .status = status,
        .news = tellNews,
    };
}

} // namespace velbrix
