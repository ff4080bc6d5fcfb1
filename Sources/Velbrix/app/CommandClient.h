#pragma once

#include "app/commands/Command.h"

namespace velbrix {

// Sends the command to the running program, prints what it answers and ends
// with the exit code.
QCoro::Task<int> runCommand(ParsedCommand command);

} // namespace velbrix
