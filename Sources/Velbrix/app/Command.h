#pragma once

#include <QCoroTask>
#include <QJsonObject>
#include <QList>
#include <QMap>
#include <QString>
#include <QStringList>

#include <functional>
#include <optional>

namespace velbrix {

class AppServices;

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
    // Nothing was done: this is what would be. The client asks the user in their
    // terminal and says the command again with --yes, these arguments ("arguments"
    // in the data) and the terms ("terms"), so that what was shown is what is done,
    // whatever has been chosen meanwhile. A command that would go beyond the terms
    // by then asks again.
    static CommandReply question(const QString &text, const QStringList &agreed, QJsonObject data = {},
                                 const QString &terms = {});
    bool isQuestion() const;
    QStringList agreedArguments() const;
    QString agreedTerms() const;
};

// "--display NUMBER", or a bare "--yes".
struct CommandOption {
    QString name;  // with its dashes
    QString value; // described for the help; empty: it takes none

    bool operator==(const CommandOption &) const = default;
};

// One verb of the command line. The words before any argument name it
// ("record start"); `arguments` describes what may follow, for the help.
struct CommandForm {
    QString words;
    QString arguments = {};
    int least = 0; // number of arguments
    int most = 0;
    QString help = {};
    bool takesPath = false; // each argument is the path of a file
    QList<CommandOption> options = {};
    // The tool's job that it has begun is cancelled by Ctrl-C and when the client
    // goes away. All others run to their end.
    bool stopsWithClient = false;

    bool operator==(const CommandForm &) const = default;
};

struct ParsedCommand {
    QString words;
    QStringList arguments;
    bool json = false;
    QMap<QString, QString> options = {}; // by name; empty for those without a value
    QString terms = {};                  // of the question that was answered; empty: whatever it is

    bool has(const QString &option) const { return options.contains(option); }

    bool operator==(const ParsedCommand &) const = default;
};

// Called on the main thread of the running program. Whoever asks sees the
// progress of the tool's jobs until the answer is there, and may go away
// before; that shows in the job alone.
using CommandHandler = std::function<QCoro::Task<CommandReply>(AppServices &services, ParsedCommand command)>;

// A verb together with what it does.
struct Command {
    CommandForm form;
    CommandHandler run;
};

// For a verb that answers at once.
CommandHandler immediate(std::function<CommandReply(AppServices &, const ParsedCommand &)> act);

// What the words on the command line mean; nothing when they mean nothing.
// After "--" every word is an argument.
std::optional<ParsedCommand> parseCommand(const QStringList &words);
// A verb that exists, with as many arguments and only such options as it takes.
bool isValid(const ParsedCommand &command);
// Relative paths are those of the folder in which the user types.
ParsedCommand withAbsolutePaths(ParsedCommand command, const QString &folder);

// Of one tool ("backup"), or of all when no tool is called that.
QString helpText(const QString &tool = {});
// What to say to words that mean nothing, with the help that fits them best.
QString misuseText(const QStringList &words);

} // namespace velbrix
