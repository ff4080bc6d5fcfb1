#include "platform/macos/SMLoginItem.h"

#include "platform/macos/FoundationBridge.h"

#import <ServiceManagement/ServiceManagement.h>

using namespace Qt::StringLiterals;

namespace velbrix {

bool SMLoginItem::isEnabled() const
{
    return SMAppService.mainAppService.status == SMAppServiceStatusEnabled;
}

Result<void> SMLoginItem::setEnabled(bool enabled)
{
    if (enabled == isEnabled())
        return {};
    SMAppService *service = SMAppService.mainAppService;
    NSError *error = nil;
    const BOOL done =
        enabled ? [service registerAndReturnError:&error] : [service unregisterAndReturnError:&error];
    // The system may accept the item and still leave the decision to the user.
    if (enabled && service.status == SMAppServiceStatusRequiresApproval)
        return failure(u"请在系统设置的“登录项”中允许 Velbrix"_s);
    if (!done)
        return std::unexpected(toFailure(error));
    return {};
}

} // namespace velbrix
