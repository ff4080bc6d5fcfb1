#pragma once

#include "app/commands/Command.h"

#include <QHash>

namespace velbrix {

class AppScanner;
class PrivacyManager;

// apps list, apps uninstall. An uninstall without "--yes" answers what would
// go, and in its data that "needsConfirmation".
QHash<QString, CommandHandler> appsCommands(AppScanner &scanner, PrivacyManager &privacy);

} // namespace velbrix
