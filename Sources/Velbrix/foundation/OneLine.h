#pragma once

#include <QString>

namespace velbrix {

// The text without line breaks and other characters that would break or turn
// round a line, or command a terminal; file names may hold anything.
QString oneLine(QString text);

} // namespace velbrix
