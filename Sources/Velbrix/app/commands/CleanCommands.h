#pragma once

#include "app/commands/Command.h"

#include <QHash>

namespace velbrix {

class PrivacyManager;
class SystemCleaner;

// clean list, preview, run.
QHash<QString, CommandHandler> cleanCommands(SystemCleaner &cleaner, PrivacyManager &privacy);

} // namespace velbrix
