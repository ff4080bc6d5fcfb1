#pragma once

#include "app/commands/Command.h"

#include <QHash>

namespace velbrix {

class AppDelegate;
class AppServices;

// status, show, hotkeys, quit.
QHash<QString, CommandHandler> shellCommands(AppServices &services, AppDelegate &delegate);

} // namespace velbrix
