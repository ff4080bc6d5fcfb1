#include "app/CommandServer.h"

#include "app/AppDelegate.h"
#include "app/AppServices.h"
#include "app/commands/AppsCommands.h"
#include "app/commands/BackupCommands.h"
#include "app/commands/CleanCommands.h"
#include "app/commands/RecordCommands.h"
#include "app/commands/ShellCommands.h"
#include "app/commands/WallpaperCommands.h"

#include <QJsonArray>

using namespace Qt::StringLiterals;

namespace velbrix {

CommandServer::CommandServer(AppServices &services, AppDelegate &delegate, QObject *parent)
    : QObject(parent),
      _handlers(shellCommands(services, delegate)),
      _channel([this](const QJsonObject &request) { return answer(request); }, services.clock)
{
    _handlers.insert(recordCommands(services, delegate.recording()));
    _handlers.insert(wallpaperCommands(services, delegate.wallpaper()));
    _handlers.insert(cleanCommands(services.cleaner, services.privacy));
    _handlers.insert(appsCommands(services.uninstaller, services.privacy));
    _handlers.insert(backupCommands(services.fileBackup));
}

Result<void> CommandServer::listen()
{
    const auto endpoint = controlEndpoint();
    if (!endpoint)
        return failure(endpoint.error().message);
    return _channel.listen(*endpoint);
}

QCoro::Task<QJsonObject> CommandServer::answer(QJsonObject request)
{
    const ParsedCommand command = parsedCommandFromJson(request);
    // Not only our own client can write to the endpoint.
    if (!isValid(command)) {
        const CommandReply refused{exitcode::usage, u"无法识别的命令"_s, {}};
        co_return toJson(refused);
    }
    const CommandHandler handler = _handlers.value(command.words);
    const CommandReply reply = co_await handler(command);
    co_return toJson(reply);
}

QJsonObject toJson(const ParsedCommand &command)
{
    QJsonObject options;
    for (auto option = command.options.begin(); option != command.options.end(); ++option)
        options.insert(option.key(), option.value());
    return {{u"words"_s, command.words},
            {u"arguments"_s, QJsonArray::fromStringList(command.arguments)},
            {u"options"_s, options}};
}

ParsedCommand parsedCommandFromJson(const QJsonObject &json)
{
    ParsedCommand command;
    command.words = json.value(u"words"_s).toString();
    for (const QJsonValue &argument : json.value(u"arguments"_s).toArray())
        command.arguments.append(argument.toString());
    const QJsonObject options = json.value(u"options"_s).toObject();
    for (auto option = options.begin(); option != options.end(); ++option)
        command.options.insert(option.key(), option.value().toString());
    return command;
}

QJsonObject toJson(const CommandReply &reply)
{
    return {{u"exitCode"_s, reply.exitCode}, {u"text"_s, reply.text}, {u"data"_s, reply.data}};
}

CommandReply commandReplyFromJson(const QJsonObject &json)
{
    return {json.value(u"exitCode"_s).toInt(exitcode::refused), json.value(u"text"_s).toString(),
            json.value(u"data"_s).toObject()};
}

} // namespace velbrix
