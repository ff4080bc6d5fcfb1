#include "foundation/LocalChannel.h"

#include "foundation/Awaitables.h"
#include "foundation/RuntimeFolder.h"

#include <QJsonDocument>
#include <QLocalServer>
#include <QLocalSocket>
#include <QPointer>

using namespace Qt::StringLiterals;
using namespace std::chrono_literals;

namespace velbrix {
namespace {

constexpr qint64 longestRequest = 64 * 1024; // bytes; room for many long paths
// A client that says nothing must not hold a connection for ever.
constexpr auto requestLimit = 5s;

QByteArray line(const QJsonObject &object)
{
    return QJsonDocument(object).toJson(QJsonDocument::Compact) + '\n';
}

} // namespace

LocalChannelServer::LocalChannelServer(Handler handler, Clock &clock, QObject *parent)
    : QObject(parent), _handler(std::move(handler)), _clock(clock), _server(std::make_unique<QLocalServer>())
{
    _server->setSocketOptions(QLocalServer::UserAccessOption);
    connect(_server.get(), &QLocalServer::newConnection, this, [this] {
        while (QLocalSocket *socket = _server->nextPendingConnection())
            accept(socket);
    });
}

LocalChannelServer::~LocalChannelServer() = default;

Result<void> LocalChannelServer::listen(const QString &path)
{
    QLocalServer::removeServer(path);
    if (!_server->listen(path))
        return failure(_server->errorString());
    return {};
}

void LocalChannelServer::accept(QLocalSocket *socket)
{
    connect(socket, &QLocalSocket::disconnected, socket, &QObject::deleteLater);
    const auto limit = std::make_shared<std::unique_ptr<Alarm>>();
    *limit = _clock.after(requestLimit, [socket = QPointer(socket)] {
        if (socket)
            socket->abort();
    });
    connect(socket, &QLocalSocket::readyRead, this, [this, socket, limit] {
        if (!socket->canReadLine()) {
            if (socket->bytesAvailable() > longestRequest)
                socket->abort();
            return;
        }
        limit->reset();
        socket->disconnect(this);
        const QJsonDocument request = QJsonDocument::fromJson(socket->readLine(longestRequest));
        if (request.isObject())
            answer(socket, request.object());
        else
            socket->abort();
    });
}

QCoro::Task<> LocalChannelServer::answer(QLocalSocket *socket, QJsonObject request)
{
    const QPointer client(socket);
    const QJsonObject reply = co_await _handler(request);
    if (!client)
        co_return;
    client->write(line(reply));
    client->flush(); // the program may be about to end
    client->disconnectFromServer();
}

QCoro::Task<std::expected<QJsonObject, ChannelFailure>> askLocalChannel(QString path, QJsonObject request)
{
    QLocalSocket socket;
    socket.connectToServer(path);
    if (socket.state() == QLocalSocket::ConnectingState)
        co_await nextSignal(socket, &QLocalSocket::stateChanged);
    if (socket.state() != QLocalSocket::ConnectedState)
        co_return std::unexpected(ChannelFailure{true, socket.errorString()});
    socket.write(line(request));
    // The answer is complete when the other side hangs up.
    co_await nextSignal(socket, &QLocalSocket::disconnected);
    const QByteArray answer = socket.readAll();
    const QJsonDocument document = QJsonDocument::fromJson(answer);
    if (!document.isObject())
        co_return std::unexpected(ChannelFailure{false, u"Velbrix 没有答复"_s});
    co_return document.object();
}

Result<QString> controlEndpoint()
{
    const auto folder = runtimeFolder();
    if (!folder)
        return folder;
    return *folder + u"/control"_s;
}

} // namespace velbrix
