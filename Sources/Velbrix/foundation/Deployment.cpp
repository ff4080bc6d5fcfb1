#include "foundation/Deployment.h"

namespace velbrix::deployment {
namespace {

constexpr const char *defaultServer = ""; // a distributor fills it in

} // namespace

QString productServer()
{
    return qEnvironmentVariable("VELBRIX_SERVER_URL", QString::fromUtf8(defaultServer));
}

} // namespace velbrix::deployment
