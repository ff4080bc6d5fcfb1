#pragma once

#include "app/commands/Command.h"

#include <QHash>

namespace velbrix {

class AppServices;
class RecordingActions;

// record start, stop, toggle, list-windows, list-devices.
QHash<QString, CommandHandler> recordCommands(AppServices &services, RecordingActions &actions);

} // namespace velbrix
