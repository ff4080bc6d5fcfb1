#pragma once

#include <QString>

// Values that belong to an installation, not to the program: compiled in as
// defaults, each overridable by an environment variable.
namespace velbrix::deployment {

// Base URL of the product server; VELBRIX_SERVER_URL. Empty: none.
QString productServer();

} // namespace velbrix::deployment
