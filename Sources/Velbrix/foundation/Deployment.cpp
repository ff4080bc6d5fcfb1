#include "foundation/Deployment.h"

namespace velbrix::deployment {
namespace {

// A distributor fills these in.
constexpr const char *defaultServer = "";
constexpr const char *defaultSecret = "";
constexpr const char *defaultPins = "";
constexpr const char *defaultMail = "";

QString value(const char *variable, const char *fallback)
{
    return qEnvironmentVariable(variable, QString::fromUtf8(fallback));
}

} // namespace

QString productServer()
{
    return value("VELBRIX_SERVER_URL", defaultServer);
}

QString sharedSecret()
{
    return value("VELBRIX_SERVER_SECRET", defaultSecret);
}

QString certificatePins()
{
    return value("VELBRIX_SERVER_PINS", defaultPins);
}

QString mailService()
{
    return value("VELBRIX_MAIL_URL", defaultMail);
}

} // namespace velbrix::deployment
