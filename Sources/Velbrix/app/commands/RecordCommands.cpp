#include "app/commands/RecordCommands.h"

#include "app/AppServices.h"
#include "app/RecordingActions.h"
#include "foundation/Awaitables.h"
#include "platform/Platform.h"

#include <QCoreApplication>
#include <QFileInfo>
#include <QJsonArray>
#include <QPointer>

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

} // namespace

QHash<QString, CommandHandler> recordCommands(AppServices &services, RecordingActions &actions)
{
    return {
        {u"record start"_s,
         [&services, &actions](const ParsedCommand &) {
             return start(services, [&actions] { actions.startFromPanel(); });
         }},
        {u"record stop"_s, [&services](const ParsedCommand &) { return stop(services); }},
        {u"record toggle"_s,
         [&services, &actions](const ParsedCommand &) {
             if (services.recorder.isRecording())
                 return stop(services);
             return start(services, [&actions] { actions.toggleQuickly(); });
         }},
        {u"record list-windows"_s, [&services](const ParsedCommand &) { return listWindows(services); }},
        {u"record list-devices"_s, [&services](const ParsedCommand &) { return listDevices(services); }},
    };
}

} // namespace velbrix
