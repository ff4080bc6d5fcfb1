#include "foundation/LocalChannel.h"

#include "foundation/RuntimeFolder.h"

#include <QCoroFuture>
#include <QJsonDocument>
#include <QLocalServer>
#include <QLocalSocket>
#include <QPointer>
#include <QPromise>

#include <utility>

using namespace Qt::StringLiterals;
using namespace std::chrono_literals;

namespace velbrix {
namespace {

constexpr qint64 longestRequest = 64LL * 1024; // bytes; room for many long paths
// A client that says nothing must not hold a connection for ever.
constexpr auto requestLimit = 5s;
// While a request is worked on the client hears something this often, and
// takes a longer silence for the end of it. A busy main thread may be late.
constexpr auto progressInterval = 3s;
constexpr auto longestSilence = 20s;
// A client that does not read what it is told is told no more.
constexpr qint64 mostUnread = 64LL * 1024;

const QString progressKey = u"progress"_s; // the only key of a line that is not the answer
const QString cancelKey = u"cancel"_s;     // of the client's second line

QByteArray line(const QJsonObject &object)
{
    return QJsonDocument(object).toJson(QJsonDocument::Compact) + '\n';
}

void tell(QLocalSocket *client, const QJsonObject &progress)
{
    if (client && client->bytesToWrite() < mostUnread)
        client->write(line({{progressKey, progress}}));
}

// One request on its way, and what comes back.
class Inquiry final : public QObject {
public:
    Inquiry(Clock &clock, LocalChannelServer::Progress progress)
        : _clock(clock), _progress(std::move(progress))
    {
        _answer.start();
        connect(&_socket, &QLocalSocket::readyRead, this, [this] { read(); });
        connect(&_socket, &QLocalSocket::disconnected, this, [this] { end(noAnswer()); });
        connect(&_socket, &QLocalSocket::errorOccurred, this, [this] {
            if (!_isConnected)
                end(std::unexpected(ChannelFailure{true, _socket.errorString()}));
        });
    }

    QFuture<ChannelAnswer> ask(const QString &path, const QJsonObject &request, Cancellation cancellation)
    {
        const QByteArray said = line(request);
        if (said.size() > longestRequest) {
            end(std::unexpected(ChannelFailure{false, u"命令太长（超过 64 KB），没有执行"_s}));
            return _answer.future();
        }
        connect(&_socket, &QLocalSocket::connected, this, [this, said, cancellation] {
            _isConnected = true;
            _socket.write(said);
            _cancelling =
                Cancellation(cancellation).onCancel([this] { _socket.write(line({{cancelKey, true}})); });
        });
        wait();
        _socket.connectToServer(path);
        return _answer.future();
    }

private:
    static ChannelAnswer noAnswer() { return std::unexpected(ChannelFailure{false, u"Velbrix 没有答复"_s}); }

    void wait()
    {
        _silence = _clock.after(longestSilence, [this] { end(noAnswer()); });
    }
    void read()
    {
        wait();
        while (_socket.canReadLine()) {
            const QJsonDocument said = QJsonDocument::fromJson(_socket.readLine());
            if (said.object().keys() != QStringList{progressKey})
                return end(said.isObject() ? ChannelAnswer(said.object()) : noAnswer());
            const QJsonObject progress = said.object().value(progressKey).toObject();
            if (_progress && !progress.isEmpty())
                _progress(progress);
        }
    }
    void end(ChannelAnswer answer)
    {
        _silence.reset();
        if (std::exchange(_isEnded, true))
            return;
        _answer.addResult(std::move(answer));
        _answer.finish();
    }

    Clock &_clock;
    const LocalChannelServer::Progress _progress;
    QPromise<ChannelAnswer> _answer;
    std::unique_ptr<Alarm> _silence;
    Observation _cancelling;
    bool _isConnected = false;
    bool _isEnded = false;
    QLocalSocket _socket; // the first to go: it may report its end then
};

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
    const QPointer self(this);
    const QPointer client(socket);
    Cancellation work;
    const auto hear = [socket, work]() mutable {
        while (socket->canReadLine()) {
            const QJsonDocument said = QJsonDocument::fromJson(socket->readLine(longestRequest));
            if (said.object().value(cancelKey).toBool())
                work.cancel();
        }
        // No more than that is ever said.
        if (socket->bytesAvailable() > longestRequest)
            socket->abort();
    };
    connect(socket, &QLocalSocket::readyRead, socket, hear);
    connect(socket, &QLocalSocket::disconnected, socket, [work]() mutable { work.cancel(); });
    QMetaObject::invokeMethod(socket, hear, Qt::QueuedConnection); // it may have come with the request
    ++_openRequests;
    const auto beat = _clock.every(progressInterval, [client] { tell(client, {}); });
    const QJsonObject reply =
        co_await _handler(request, [client](const QJsonObject &progress) { tell(client, progress); }, work);
    if (client) {
        client->write(line(reply));
        client->flush(); // the program may be about to end
        client->disconnectFromServer();
    }
    if (self && --_openRequests == 0)
        Q_EMIT answered();
}

QCoro::Task<ChannelAnswer> askLocalChannel(QString path, QJsonObject request, Clock &clock,
                                           LocalChannelServer::Progress progress, Cancellation cancellation)
{
    Inquiry inquiry(clock, std::move(progress));
    const QFuture<ChannelAnswer> future = inquiry.ask(path, request, cancellation);
    ChannelAnswer answer = co_await future;
    co_return answer;
}

Result<QString> controlEndpoint()
{
    const auto folder = runtimeFolder();
    if (!folder)
        return folder;
    return *folder + u"/control"_s;
}

} // namespace velbrix
