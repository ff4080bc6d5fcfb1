#pragma once

#include "app/Tools.h"
#include "support/FakePlatform.h"

namespace velbrix::test {

// What the running program answers to a line that somebody types; time passes
// until it does. No word has a space in it. The terms are those of a question
// that they have agreed to.
inline CommandReply ask(AppServices &services, VirtualClock &clock, const QString &line,
                        const QString &terms = {})
{
    auto command = parseCommand(line.split(u' '));
    if (!command)
        return {exitcode::usage, misuseText(line.split(u' ')), {}};
    command->terms = terms;
    settle();
    const auto reply = std::make_shared<std::optional<CommandReply>>();
    commandOf(command->words)->run(services, *command).then([reply](CommandReply now) { *reply = now; });
    const bool isAnswered = waitFor([&] {
        settle();
        if (!*reply)
            clock.advance(50ms);
        return reply->has_value();
    });
    return isAnswered ? **reply : CommandReply{-1, u"no reply"_s, {}};
}

// The exit code and the text.
inline QString words(const CommandReply &reply)
{
    return QString::number(reply.exitCode) + u' ' + reply.text;
}

} // namespace velbrix::test
