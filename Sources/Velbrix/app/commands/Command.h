#pragma once

#include <QCoroTask>
#include <QJsonObject>
#include <QList>
#include <QString>
#include <QStringList>

#include <functional>
#include <optional>

namespace velbrix {

namespace exitcode {
inline constexpr int done = 0;
inline constexpr int refused = 1;
inline constexpr int usage = 2;
inline constexpr int notRunning = 3;
} // namespace exitcode

// What a command answers: Chinese text for people, and with --json an object
// with stable English keys.
struct CommandReply {
    int exitCode = exitcode::done;
    QString text;
    QJsonObject data;

    static CommandReply refusal(const QString &reason) { return {exitcode::refused, reason, {}}; }
};

// One verb of the command line. The words before any argument name it
// ("record start"); `arguments` describes what may follow, for the help.
struct CommandForm {
    QString words;
    QString arguments;
    int least = 0; // number of arguments
    int most = 0;
    QString help;

    bool operator==(const CommandForm &) const = default;
};

// Every verb there is, in the order of the help text. A tool that comes later
// adds its verbs here and their handlers in a file of its own beside this one.
const QList<CommandForm> &commandForms();

struct ParsedCommand {
    QString words;
    QStringList arguments;
    bool json = false;

    bool operator==(const ParsedCommand &) const = default;
};

// What the words on the command line mean; nothing when they mean nothing.
std::optional<ParsedCommand> parseCommand(QStringList words);

QString helpText();

// Handlers are called on the main thread of the running program.
using CommandHandler = std::function<QCoro::Task<CommandReply>(QStringList arguments)>;

} // namespace velbrix
