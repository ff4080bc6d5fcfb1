#pragma once

#include "app/commands/Command.h"
#include "foundation/Clock.h"

namespace velbrix {

// Sends the command to the running program, prints what it answers and ends
// with the exit code.
QCoro::Task<int> runCommand(ParsedCommand command, Clock &clock);

} // namespace velbrix
