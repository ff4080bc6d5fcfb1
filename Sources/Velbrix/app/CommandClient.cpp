#include "app/CommandClient.h"

#include "app/CommandServer.h"
#include "app/Tools.h"
#include "foundation/LocalChannel.h"

#include <QDir>
#include <QFile>
#include <QJsonDocument>
#include <QSocketNotifier>

#include <array>
#include <csignal>
#include <cstdio>
#include <functional>
#include <memory>
#include <optional>
#include <unistd.h>

using namespace Qt::StringLiterals;

namespace velbrix {
namespace {

void print(std::FILE *stream, const QByteArray &bytes)
{
    std::fwrite(bytes.constData(), 1, static_cast<std::size_t>(bytes.size()), stream);
    std::fputc('\n', stream);
}

// One line of a terminal that is written again and again, and is gone at the end.
class ProgressLine {
public:
    explicit ProgressLine(bool isShown) : _isShown(isShown && ::isatty(STDERR_FILENO)) {}
    ~ProgressLine() { write({}); }

    void show(const QJsonObject &progress)
    {
        QString text = progress.value(u"what"_s).toString();
        if (const QJsonValue share = progress.value(u"share"_s); share.isDouble())
            text += u" %1%"_s.arg(qRound(share.toDouble() * 100));
        write(text);
    }

private:
    void write(const QString &text)
    {
        if (!_isShown || (text.isEmpty() && !_isWritten))
            return;
        _isWritten = !text.isEmpty();
        constexpr char clearLine[] = "\r\x1b[K";
        std::fputs((clearLine + text.toUtf8()).constData(), stderr);
    }

    const bool _isShown;
    bool _isWritten = false;
};

int interruptPipe = -1;

void tellInterrupt(int)
{
    const char byte = 1;
    (void)!::write(interruptPipe, &byte, 1);
}

// Cancels with the first Ctrl-C; the second ends the program as it always does.
class InterruptWatch {
public:
    InterruptWatch(Cancellation cancellation, std::function<void()> cancelled)
    {
        struct sigaction found{};
        // Whoever had it ignored wants this to go on.
        if (::sigaction(SIGINT, nullptr, &found) != 0 || found.sa_handler == SIG_IGN ||
            ::pipe(_pipe.data()) != 0)
            return;
        interruptPipe = _pipe[1];
        _notifier = std::make_unique<QSocketNotifier>(_pipe[0], QSocketNotifier::Read);
        QObject::connect(_notifier.get(), &QSocketNotifier::activated, _notifier.get(),
                         [this, cancellation, cancelled]() mutable {
                             _notifier->setEnabled(false);
                             cancelled();
                             cancellation.cancel();
                         });
        struct sigaction action{};
        action.sa_handler = tellInterrupt;
        action.sa_flags = static_cast<int>(SA_RESTART | SA_RESETHAND);
        ::sigaction(SIGINT, &action, nullptr);
    }
    ~InterruptWatch()
    {
        if (!_notifier)
            return;
        std::signal(SIGINT, SIG_DFL);
        _notifier.reset();
        for (const int end : _pipe)
            ::close(end);
    }
    Q_DISABLE_COPY_MOVE(InterruptWatch)

private:
    std::array<int, 2> _pipe = {-1, -1};
    std::unique_ptr<QSocketNotifier> _notifier;
};

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
    ProgressLine line(!command.json);
    const Cancellation cancellation;
    std::optional<InterruptWatch> watch;
    if (const Command *const known = commandOf(command.words); known && known->form.stopsWithClient)
        watch.emplace(cancellation, [&line] { line.show({{u"what"_s, u"正在停止…"_s}}); });
    const auto answer = co_await askLocalChannel(
        *endpoint, request, clock, [&line](const QJsonObject &progress) { line.show(progress); },
        cancellation);
    if (answer)
        co_return commandReplyFromJson(*answer);
    co_return answer.error().nobodyListens ? notRunning : CommandReply::refusal(answer.error().message);
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
    while (!command.json && reply.isQuestion()) {
        if (!hasTerminal()) {
            reply.text += u"\n没有执行。确认无误后加上 --yes 再运行一次。"_s;
            break;
        }
        if (!isConfirmed(reply.text)) {
            reply.text = u"没有执行"_s;
            break;
        }
        command.options.insert(u"--yes"_s, QString());
        command.terms = reply.agreedTerms();
        if (const QStringList agreed = reply.agreedArguments(); !agreed.isEmpty())
            command.arguments = agreed;
        reply = co_await ask(command, clock);
    }
    co_return present(reply, command.json);
}

} // namespace velbrix
