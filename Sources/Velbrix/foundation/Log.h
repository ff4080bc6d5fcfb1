#pragma once

#include <QString>

namespace velbrix::log {

// One line "[tag] text" on standard output, flushed at once. Any thread.
void line(const QString &tag, const QString &text);

// "true" or "false".
QString text(bool value);

} // namespace velbrix::log
