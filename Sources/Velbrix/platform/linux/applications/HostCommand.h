#pragma once

#include "foundation/ProcessRunner.h"

#include <QStringList>

namespace velbrix {

// A run of a program and its arguments whose answer is in English and keeps
// every letter of names.
ProcessRequest hostCommand(const QStringList &command);

// What a program said last, for the user.
QString lastLine(const ProcessOutcome &outcome);

} // namespace velbrix
