#pragma once

#include <QString>

namespace velbrix {

class AppServices;

// Shows the file in the file manager; a failure is told in a banner.
void revealOrTell(AppServices &services, const QString &path);

} // namespace velbrix
