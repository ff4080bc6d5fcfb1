#pragma once

#include "app/Tool.h"

namespace velbrix {

// Every tool there is, in the order of the sidebar and the status.
const QList<Tool> &tools();
// Null when there is none.
const Tool *toolCalled(const QString &identifier);

// Every verb of every tool, in the order of the help: the program's own first.
const QList<Command> &commands();
// Null when there is none of these words.
const Command *commandOf(const QString &words);

// Null where the tool has none.
Job *jobOf(const Tool &tool, AppServices &services);
// Of the tool that has the command.
Job *jobBehind(const Command &command, AppServices &services);
QList<Job *> allJobs(AppServices &services);

} // namespace velbrix
