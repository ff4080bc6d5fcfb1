#pragma once

#include <QString>

namespace velbrix {

// A size as file managers show it: decimal units, whole KB, one decimal for MB
// and two from GB on, no trailing zeros; "零 KB" for nothing.
QString formatByteCount(qint64 bytes);

// The text without line breaks and other characters that would break or turn
// round a line, or command a terminal; file names may hold anything.
QString oneLine(QString text);

} // namespace velbrix
