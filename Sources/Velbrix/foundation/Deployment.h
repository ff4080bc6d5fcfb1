#pragma once

#include <QString>

// Values that belong to an installation, not to the program: compiled in as
// defaults, each overridable by an environment variable.
namespace velbrix::deployment {

// Base URL of the product server; VELBRIX_SERVER_URL. Empty: none.
QString productServer();
// Secret shared with the product server; VELBRIX_SERVER_SECRET.
QString sharedSecret();
// SHA-256 pins of the server's key, base64, separated by commas; VELBRIX_SERVER_PINS.
QString certificatePins();
// Base URL of the temporary-mail service; VELBRIX_MAIL_URL.
QString mailService();

} // namespace velbrix::deployment
