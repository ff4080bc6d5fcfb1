#include "platform/macos/system/SMLoginItem.h"

#include "platform/macos/system/FoundationBridge.h"

#import <ServiceManagement/ServiceManagement.h>

using namespace Qt::StringLiterals;

namespace velbrix {

bool SMLoginItem::isEnabled() const
{
    return SMAppService.mainAppService.status == SMAppServiceStatusEnabled;
}

Result<void> SMLoginItem::setEnabled(bool enabled)
{
    SMAppService *service = SMAppService.mainAppService;
    NSError *error = nil;
    if (!enabled) {
        const bool listed = service.status == SMAppServiceStatusEnabled ||
                            service.status == SMAppServiceStatusRequiresApproval;
        if (listed && ![service unregisterAndReturnError:&error])
            return std::unexpected(toFailure(error));
        return {};
    }
    if (isEnabled())
        return {};
    const BOOL registered = [service registerAndReturnError:&error];
    // The system may list the item and still leave the decision to the user.
    if (service.status == SMAppServiceStatusRequiresApproval)
        return failure(u"请在系统设置的“登录项”中允许 Velbrix"_s);
    if (!registered)
        return std::unexpected(toFailure(error));
    return {};
}

} // namespace velbrix
