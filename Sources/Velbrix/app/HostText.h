#pragma once

#include "platform/HostFamily.h"

#include <QString>

namespace velbrix {

// A text for users in the names of this host. As written it is for a Mac.
QString hostText(QString text, HostFamily family);

} // namespace velbrix
