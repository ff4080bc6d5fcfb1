#pragma once

#include "app/Command.h"
#include "foundation/LocalChannel.h"
#include "foundation/Result.h"

#include <QObject>

namespace velbrix {

class AppServices;

// The running program's end of the command line.
class CommandServer final : public QObject {
    Q_OBJECT

public:
    explicit CommandServer(AppServices &services, QObject *parent = nullptr);

    Result<void> listen();
    // Somebody waits for an answer.
    bool isAnswering() const { return _channel.isAnswering(); }
    // Of a request that may come from anybody. The progress is that of the
    // tool's jobs: "what" and, where it is known, "share" (0…1).
    QCoro::Task<QJsonObject> answer(QJsonObject request, LocalChannelServer::Progress progress,
                                    Cancellation work);

Q_SIGNALS:
    // Nobody waits any more.
    void answered();

private:
    AppServices &_services;
    LocalChannelServer _channel;
};

// The request and the answer as they travel.
QJsonObject toJson(const ParsedCommand &command);
ParsedCommand parsedCommandFromJson(const QJsonObject &json);
QJsonObject toJson(const CommandReply &reply);
CommandReply commandReplyFromJson(const QJsonObject &json);

} // namespace velbrix
