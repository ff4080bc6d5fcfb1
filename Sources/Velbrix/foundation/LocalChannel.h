#pragma once

#include "foundation/Cancellation.h"
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

// Requests between two programs of one user: one JSON object asks and one
// answers, each as a line of text. Until the answer is there lines of progress
// come, and show the client that somebody still works on it; the client may say
// that it wants no more. Main thread.
class LocalChannelServer final : public QObject {
    Q_OBJECT

public:
    // Tells the client how far its request has come; nothing happens when the
    // client has gone.
    using Progress = std::function<void(const QJsonObject &progress)>;
    // The work is cancelled when the client says so or goes away; what comes of
    // that is up to the handler.
    using Handler =
        std::function<QCoro::Task<QJsonObject>(QJsonObject request, Progress progress, Cancellation work)>;

    LocalChannelServer(Handler handler, Clock &clock, QObject *parent = nullptr);
    ~LocalChannelServer() override;

    // The caller owns the endpoint alone: a socket found there is a dead
    // program's and is replaced. Nobody but this user can connect.
    Result<void> listen(const QString &path);

    // A request has not been answered yet.
    bool isAnswering() const { return _openRequests > 0; }

Q_SIGNALS:
    // The last open request: its answer has left.
    void answered();

private:
    void accept(QLocalSocket *socket);
    QCoro::Task<> answer(QLocalSocket *socket, QJsonObject request);

    Handler _handler;
    Clock &_clock;
    std::unique_ptr<QLocalServer> _server;
    int _openRequests = 0;
};

struct ChannelFailure {
    bool nobodyListens = false;
    QString message;
};

// Asks whoever listens at the endpoint. Waits for the answer as long as that
// takes, but not for one who says nothing any more. Cancelling passes that on,
// and the answer is waited for all the same.
using ChannelAnswer = std::expected<QJsonObject, ChannelFailure>;
QCoro::Task<ChannelAnswer> askLocalChannel(QString path, QJsonObject request, Clock &clock,
                                           LocalChannelServer::Progress progress = {},
                                           Cancellation cancellation = {});

// Where this user's running program listens.
Result<QString> controlEndpoint();

} // namespace velbrix
