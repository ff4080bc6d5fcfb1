#include "app/CommandClient.h"

#include "app/CommandServer.h"
#include "foundation/Deadline.h"
#include "foundation/LocalChannel.h"

#include <QDir>
#include <QJsonDocument>

#include <cstdio>

using namespace Qt::StringLiterals;
using namespace std::chrono_literals;

namespace velbrix {
namespace {

void print(std::FILE *stream, const QByteArray &bytes)
{
    std::fwrite(bytes.constData(), 1, static_cast<std::size_t>(bytes.size()), stream);
    std::fputc('\n', stream);
}

std::chrono::milliseconds longestAnswer(const QString &words)
{
    // A recording may take its time to start or end, and a video to be read.
    if (words.startsWith(u"record "_s))
        return 10min;
    return words.startsWith(u"wallpaper "_s) ? 1min : 10s;
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

QCoro::Task<int> runCommand(ParsedCommand command, Clock &clock)
{
    const CommandReply notRunning{exitcode::notRunning, u"Velbrix 没有在运行"_s, {}};
    const auto endpoint = controlEndpoint();
    if (!endpoint)
        co_return present(notRunning, command.json);
    const QJsonObject request = toJson(withAbsolutePaths(command, QDir::currentPath()));
    const auto answer =
        co_await withDeadline(clock, longestAnswer(command.words), askLocalChannel(*endpoint, request));
    if (!answer)
        co_return present(CommandReply::refusal(u"Velbrix 没有答复"_s), command.json);
    if (*answer)
        co_return present(commandReplyFromJson(**answer), command.json);
    const ChannelFailure failed = answer->error();
    co_return present(failed.nobodyListens ? notRunning : CommandReply::refusal(failed.message),
                      command.json);
}

} // namespace velbrix
