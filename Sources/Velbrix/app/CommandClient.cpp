#include "app/CommandClient.h"

#include "app/CommandServer.h"
#include "foundation/LocalChannel.h"

#include <QJsonDocument>

#include <cstdio>

using namespace Qt::StringLiterals;

namespace velbrix {
namespace {

void print(std::FILE *stream, const QByteArray &bytes)
{
    std::fwrite(bytes.constData(), 1, static_cast<std::size_t>(bytes.size()), stream);
    std::fputc('\n', stream);
}

int present(const CommandReply &reply, bool json)
{
    const bool done = reply.exitCode == exitcode::done;
    if (json) {
        QJsonObject object = reply.data;
        object[u"ok"_s] = done;
        if (!done)
            object[u"error"_s] = reply.text;
        print(stdout, QJsonDocument(object).toJson(QJsonDocument::Compact));
    } else {
        print(done ? stdout : stderr, reply.text.toUtf8());
    }
    return reply.exitCode;
}

} // namespace

QCoro::Task<int> runCommand(ParsedCommand command)
{
    const CommandReply notRunning{exitcode::notRunning, u"Velbrix 没有在运行"_s, {}};
    const auto endpoint = controlEndpoint();
    if (!endpoint)
        co_return present(notRunning, command.json);
    const QJsonObject request = toJson(command);
    const auto answer = co_await askLocalChannel(*endpoint, request);
    co_return present(answer ? commandReplyFromJson(*answer) : notRunning, command.json);
}

} // namespace velbrix
