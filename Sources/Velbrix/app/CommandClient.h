#pragma once

#include "app/Command.h"
#include "foundation/Clock.h"

namespace velbrix {

// Sends the command to the running program, prints what it answers and ends
// with the exit code. In a terminal it shows the progress meanwhile.
QCoro::Task<int> runCommand(ParsedCommand command, Clock &clock);

} // namespace velbrix
