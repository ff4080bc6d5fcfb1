#pragma once

#include "foundation/Clock.h"
#include "foundation/Result.h"

#include <QCoroTask>
#include <QJsonObject>
#include <QObject>
#include <QString>

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

// Asks whoever listens at the endpoint. Nothing listening is a failure.
QCoro::Task<Result<QJsonObject>> askLocalChannel(QString path, QJsonObject request);

// Where this user's running program listens.
Result<QString> controlEndpoint();

} // namespace velbrix
