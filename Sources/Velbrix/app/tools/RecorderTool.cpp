#include "app/AppServices.h"
#include "app/Banners.h"
#include "app/Tool.h"
#include "app/TrayController.h"
#include "foundation/Awaitables.h"
#include "foundation/Log.h"
#include "foundation/Text.h"
#include "platform/Platform.h"

#include <QCoreApplication>
#include <QFileInfo>
#include <QJsonArray>

using namespace Qt::StringLiterals;

namespace velbrix {
namespace {

const QString windowOption = u"--window"_s;
const QString displayOption = u"--display"_s;
const QString fpsOption = u"--fps"_s;
const QString qualityOption = u"--quality"_s;
const QString qualityNames = u"original、half、1080p"_s;
const QString calledOff = u"录制已取消，没有留下文件"_s;

QString frameRates()
{
    QStringList rates;
    for (const RecordFPS fps : allRecordFPS)
        rates << QString::number(framesPerSecond(fps));
    return rates.join(u'、');
}

// In English or as the panel calls it.
std::optional<RecordQuality> qualityCalled(const QString &name)
{
    if (name == u"original")
        return RecordQuality::original;
    if (name == u"half")
        return RecordQuality::half;
    return recordQualityFromRawValue(name);
}

QString reasonOr(const QString &reason, const QString &otherwise)
{
    return reason.isEmpty() ? otherwise : reason;
}

CommandReply started(AppServices &services)
{
    const RecordingSession &session = services.recorder.session();
    const RecordingOutcome outcome = session.outcome();
    if (outcome.kind == RecordingOutcome::Kind::calledOff)
        return CommandReply::refusal(calledOff);
    if (!session.isRecording())
        return CommandReply::refusal(reasonOr(outcome.reason, u"录制没有开始"_s));
    const QString path = session.outputURL().value_or(QString());
    return {exitcode::done, u"已开始录制：%1"_s.arg(path), {{u"recording"_s, true}, {u"file"_s, path}}};
}

CommandReply stopped(AppServices &services)
{
    const RecordingOutcome outcome = services.recorder.session().outcome();
    if (outcome.kind == RecordingOutcome::Kind::calledOff)
        return {exitcode::done, calledOff, {{u"recording"_s, false}}};
    if (!outcome.hasMovie())
        return CommandReply::refusal(reasonOr(outcome.reason, u"没有录下影片"_s));
    return {exitcode::done,
            u"已保存：%1"_s.arg(outcome.file),
            {{u"recording"_s, false}, {u"file"_s, outcome.file}, {u"bytes"_s, outcome.bytes}}};
}

// What the options say; the panel's settings stay as they are.
Result<RecordingWishes> wishesOf(const ParsedCommand &command, const QList<Display> &displays)
{
    RecordingWishes wishes;
    const auto number = [&](const QString &option) { return command.options.value(option).toUInt(); };
    if (command.has(windowOption) && command.has(displayOption))
        return failure(u"--window 与 --display 只能用一个"_s);
    if (command.has(windowOption)) {
        wishes.mode = RecordMode::window;
        wishes.windowId = number(windowOption);
        if (wishes.windowId == 0U)
            return failure(u"窗口编号不对，可用 record list-windows 查看：%1"_s.arg(
                command.options.value(windowOption)));
    }
    if (command.has(displayOption)) {
        const qsizetype place = number(displayOption);
        if (place < 1 || place > displays.size())
            return failure(u"没有编号为 %1 的显示器（共 %2 块）"_s.arg(command.options.value(displayOption),
                                                                       QString::number(displays.size())));
        wishes.mode = RecordMode::fullScreen;
        wishes.displayId = displays[place - 1].id;
    }
    if (command.has(fpsOption)) {
        wishes.fps = recordFPSFromInteger(static_cast<int>(number(fpsOption)));
        if (!wishes.fps)
            return failure(u"帧率只能是 %1"_s.arg(frameRates()));
    }
    if (command.has(qualityOption)) {
        wishes.quality = qualityCalled(command.options.value(qualityOption));
        if (!wishes.quality)
            return failure(u"画质只能是 %1"_s.arg(qualityNames));
    }
    return wishes;
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

QCoro::Task<CommandReply> startAsAsked(AppServices &services, ParsedCommand command)
{
    const auto wishes = wishesOf(command, services.platform.displays->displays());
    if (!wishes)
        co_return CommandReply::refusal(wishes.error().message);
    co_return co_await start(services,
                             [&services, &wishes] { services.recordingActions.startFromPanel(*wishes); });
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

CommandReply listDisplays(AppServices &services)
{
    QJsonArray list;
    QStringList lines;
    const QList<Display> displays = services.platform.displays->displays();
    for (const Display &display : displays) {
        const int number = static_cast<int>(list.size()) + 1;
        lines << u"%1  %2%3  %4x%5"_s.arg(
            QString::number(number), display.name, display.isMain ? u"（主）"_s : QString(),
            QString::number(display.frame.width()), QString::number(display.frame.height()));
        list.append(QJsonObject{{u"number"_s, number},
                                {u"id"_s, static_cast<qint64>(display.id)},
                                {u"name"_s, display.name},
                                {u"main"_s, display.isMain},
                                {u"width"_s, display.frame.width()},
                                {u"height"_s, display.frame.height()}});
    }
    return {
        exitcode::done, lines.isEmpty() ? u"没有检测到显示器"_s : lines.join(u'\n'), {{u"displays"_s, list}}};
}

QList<Command> commands()
{
    return {
        {{.words = u"record start"_s,
          .help =
              u"开始录制；没有写明的按录制面板的设置（帧率 %1，画质 %2）"_s.arg(frameRates(), qualityNames),
          .options = {{windowOption, u"窗口编号"_s},
                      {displayOption, u"显示器编号"_s},
                      {fpsOption, u"帧率"_s},
                      {qualityOption, u"画质"_s}},
          .stopsWithClient = true},
         startAsAsked},
        {{.words = u"record stop"_s, .help = u"停止录制并等待文件校验完成"_s},
         [](AppServices &services, const ParsedCommand &) { return stop(services); }},
        {{.words = u"record toggle"_s, .help = u"开始全屏录制，或停止当前录制"_s, .stopsWithClient = true},
         [](AppServices &services, const ParsedCommand &) {
             if (services.recorder.isRecording())
                 return stop(services);
             return start(services, [&services] { services.recordingActions.toggleQuickly(); });
         }},
        {{.words = u"record list-windows"_s, .help = u"列出可录制的窗口，每行以编号开头"_s},
         [](AppServices &services, const ParsedCommand &) { return listWindows(services); }},
        {{.words = u"record list-displays"_s, .help = u"列出显示器，1 是主显示器"_s},
         immediate([](AppServices &services, const ParsedCommand &) { return listDisplays(services); })},
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
    status.line =
        isRecording
            ? u"录制：进行中，%1 秒，%2"_s.arg(live.elapsedSeconds()).arg(formatByteCount(live.fileSize()))
            : u"录制：未开始"_s;
    status.data = {{u"recording"_s, isRecording},
                   {u"frames"_s, live.frameCountUI()},
                   {u"elapsedSeconds"_s, live.elapsedSeconds()},
                   {u"bytes"_s, live.fileSize()}};
    if (const auto path = session.outputURL())
        status.data[u"file"_s] = *path;
    if (isRecording && !live.warning().isEmpty())
        status.data[u"warning"_s] = live.warning();
    const RecordingOutcome outcome = session.outcome();
    const FinishedRecording &finished = services.recorder.finished();
    if (outcome.hasMovie() && finished.place() != FinishedRecording::Place::trashed)
        status.data[u"lastMovie"_s] = finished.path();
    if (outcome.kind == RecordingOutcome::Kind::failed)
        status.data[u"lastFailure"_s] = outcome.reason;
    if (outcome.kind == RecordingOutcome::Kind::cutShort)
        status.data[u"endedEarly"_s] = outcome.reason;
    return status;
}

void tell(const RecordingOutcome &outcome, Banners &banners)
{
    const QString name = QFileInfo(outcome.file).fileName();
    switch (outcome.kind) {
    case RecordingOutcome::Kind::none:
        break;
    case RecordingOutcome::Kind::saved:
        banners.show(u"录制已保存"_s, name, u"checkmark.circle.fill"_s, ToastTone::good);
        break;
    case RecordingOutcome::Kind::cutShort:
        banners.warn(u"录制提前结束，已录的部分保存好了"_s, u"%1：%2"_s.arg(outcome.reason, name));
        break;
    case RecordingOutcome::Kind::failed:
        banners.warn(u"屏幕录制"_s, outcome.reason);
        break;
    case RecordingOutcome::Kind::calledOff:
        banners.show(u"录制已取消"_s, u"没有留下文件。"_s, u"info.circle"_s);
        break;
    }
}

void tellNews(AppServices &services, Banners &banners)
{
    const RecordingSession &session = services.recorder.session();
    QObject::connect(&session, &RecordingSession::outcomeChanged, &banners,
                     [&banners, &session] { tell(session.outcome(), banners); });
    const UnfinishedRecordings &unfinished = services.recorder.unfinished();
    const auto tellLeftovers = [&banners] {
        banners.show(u"发现未正常结束的录制"_s, u"可以在录制面板里修复。"_s, u"film"_s);
    };
    if (unfinished.leftovers().isEmpty())
        QObject::connect(&unfinished, &UnfinishedRecordings::leftoversChanged, &banners, tellLeftovers,
                         Qt::SingleShotConnection); // they are being looked for
    else
        tellLeftovers();
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
