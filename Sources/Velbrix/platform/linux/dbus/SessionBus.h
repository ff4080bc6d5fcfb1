#pragma once

#include <QDBusConnection>

#include <optional>

namespace velbrix {

// The session bus, when the session has one. Asking never starts a bus.
std::optional<QDBusConnection> sessionBus();

} // namespace velbrix
