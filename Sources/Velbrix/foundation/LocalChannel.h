#pragma once

#include "foundation/Clock.h"
#include "foundation/Result.h"

#include <QCoroTask>
#include <QJsonObject>
#include <QObject>
#include <QString>

#include <expected>
#include <functional>
#include <memory>

class QLocalServer;
class QLocalSocket;

namespace velbrix {

// Requests between two programs of one user: one JSON object asks, one
// answers, both as a line of text. Main thread.
class LocalChannelServer final : public QObject {
    Q_OBJECT

public:
    using Handler = std::function<QCoro::Task<QJsonObject>(QJsonObject request)>;

    LocalChannelServer(Handler handler, Clock &clock, QObject *parent = nullptr);
    ~LocalChannelServer() override;

    // The caller owns the endpoint alone: a socket found there is a dead
    // program's and is replaced. Nobody but this user can connect.
    Result<void> listen(const QString &path);

private:
    void accept(QLocalSocket *socket);
    QCoro::Task<> answer(QLocalSocket *socket, QJsonObject request);

    Handler _handler;
    Clock &_clock;
    std::unique_ptr<QLocalServer> _server;
};

struct ChannelFailure {
    bool nobodyListens = false;
    QString message;
};

// Asks whoever listens at the endpoint, and waits for the answer as long as
// that takes.
QCoro::Task<std::expected<QJsonObject, ChannelFailure>> askLocalChannel(QString path, QJsonObject request);

// Where this user's running program listens.
Result<QString> controlEndpoint();

} // namespace velbrix
