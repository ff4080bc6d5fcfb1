#pragma once

#include "platform/Permissions.h"

#include <QString>

namespace velbrix {

// The page of System Settings where the user decides about this.
QString privacyPaneUrl(PrivacyPane pane);

} // namespace velbrix
