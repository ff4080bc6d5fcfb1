#pragma once

class QObject;

namespace velbrix {

// Puts the toolkit's own texts (folder panels, context menus) into the
// program's language while the owner lives.
void installToolkitTexts(QObject *owner);

} // namespace velbrix
