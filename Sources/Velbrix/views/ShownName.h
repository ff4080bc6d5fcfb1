#pragma once

#include <QString>

namespace velbrix {

// The name as it stands in a sentence or a title: on one line, and without its
// middle when it is so long that it would push everything else aside.
QString shownName(const QString &name);

} // namespace velbrix
