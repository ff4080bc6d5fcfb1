#include "app/CommandClient.h"

#include "app/CommandServer.h"
#include "foundation/Awaitables.h"
#include "foundation/LocalChannel.h"

#include <QDir>
#include <QFile>
#include <QJsonDocument>

#include <cstdio>
#include <unistd.h>

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
    // As long as there is anything to copy or to remove.
    static const QStringList unhurried = {u"clean run"_s, u"apps uninstall"_s, u"backup run"_s};
    if (unhurried.contains(words))
        return 24h;
    // A recording may take its time to start or end, and a video or a folder
    // to be read.
    if (words.startsWith(u"record "_s) || words.startsWith(u"clean "_s) || words.startsWith(u"apps "_s))
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

QCoro::Task<CommandReply> ask(ParsedCommand command, Clock &clock)
{
    const CommandReply notRunning{exitcode::notRunning, u"Velbrix 没有在运行"_s, {}};
    const auto endpoint = controlEndpoint();
    if (!endpoint)
        co_return notRunning;
    const QJsonObject request = toJson(withAbsolutePaths(command, QDir::currentPath()));
    const auto answer =
        co_await withDeadline(clock, longestAnswer(command.words), askLocalChannel(*endpoint, request));
    if (!answer)
        co_return CommandReply::refusal(u"Velbrix 没有答复"_s);
    if (*answer)
        co_return commandReplyFromJson(**answer);
    const ChannelFailure failed = answer->error();
    co_return failed.nobodyListens ? notRunning : CommandReply::refusal(failed.message);
}

bool hasTerminal()
{
    return ::isatty(STDIN_FILENO) && ::isatty(STDOUT_FILENO);
}

// Reading a line holds up nothing here: the program waits for the user alone.
bool isConfirmed(const QString &question)
{
    std::fputs((question + u"\n确定要继续吗？输入 y 继续：[y/N] "_s).toUtf8().constData(), stdout);
    std::fflush(stdout);
    QFile terminal;
    if (!terminal.open(STDIN_FILENO, QIODevice::ReadOnly | QIODevice::Text))
        return false;
    const QByteArray line = terminal.readLine().trimmed().toLower();
    return line == "y" || line == "yes";
}

} // namespace

QCoro::Task<int> runCommand(ParsedCommand command, Clock &clock)
{
    CommandReply reply = co_await ask(command, clock);
    if (!command.json && reply.isQuestion()) {
        if (!hasTerminal()) {
            reply.text += u"\n没有执行。确认无误后加上 --yes 再运行一次。"_s;
        } else if (isConfirmed(reply.text)) {
            command.options.insert(u"--yes"_s, QString());
            if (const QStringList agreed = reply.agreedArguments(); !agreed.isEmpty())
                command.arguments = agreed;
            reply = co_await ask(command, clock);
        } else {
            reply.text = u"没有执行"_s;
        }
    }
    co_return present(reply, command.json);
}

} // namespace velbrix
