#pragma once

#include "app/Tool.h"

namespace velbrix {

// Every tool there is, in the order of the sidebar, the help and the status.
const QList<Tool> &tools();
// Null when there is none.
const Tool *toolCalled(const QString &identifier);

// Every verb of every tool.
const QList<Command> &commands();
// Null when there is none of these words.
const Command *commandOf(const QString &words);
// Of the tool that has the command.
QList<Job *> jobsBehind(const Command &command, AppServices &services);

// All of one tool, and of all tools.
QList<Job *> jobsOf(const Tool &tool, AppServices &services);
QList<Job *> allJobs(AppServices &services);

} // namespace velbrix
