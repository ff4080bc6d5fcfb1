#pragma once

#include "app/commands/Command.h"

#include <QHash>

namespace velbrix {

class FileBackupController;

// backup list, add, run, remove. A refusal whose data says "needsConfirmation"
// is lifted by "--yes".
QHash<QString, CommandHandler> backupCommands(FileBackupController &backup);

} // namespace velbrix
