#pragma once

#include <QString>

#include <optional>

namespace velbrix {

// "12.3 MB", "4.5 GiB", "512 bytes" as package managers print them in English;
// the space may be one that does not break.
std::optional<qint64> bytesOf(const QString &text);

} // namespace velbrix
