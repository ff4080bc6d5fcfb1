#pragma once

#include "app/commands/Command.h"
#include "foundation/LocalChannel.h"
#include "foundation/Result.h"

#include <QHash>
#include <QObject>

namespace velbrix {

class AppDelegate;
class AppServices;

// The running program's end of the command line.
class CommandServer final : public QObject {
    Q_OBJECT

public:
    CommandServer(AppServices &services, AppDelegate &delegate, QObject *parent = nullptr);

    Result<void> listen();

private:
    QCoro::Task<QJsonObject> answer(QJsonObject request);

    QHash<QString, CommandHandler> _handlers;
    LocalChannelServer _channel;
};

// The request and the answer as they travel.
QJsonObject toJson(const ParsedCommand &command);
ParsedCommand parsedCommandFromJson(const QJsonObject &json);
QJsonObject toJson(const CommandReply &reply);
CommandReply commandReplyFromJson(const QJsonObject &json);

} // namespace velbrix
