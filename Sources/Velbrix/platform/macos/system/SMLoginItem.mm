#include "platform/macos/system/SMLoginItem.h"

#include "platform/macos/system/FoundationBridge.h"

#import <AppKit/AppKit.h>
#import <CoreServices/CoreServices.h>
#import <ServiceManagement/ServiceManagement.h>

using namespace Qt::StringLiterals;

namespace velbrix {

namespace {

bool isLoginStart(NSAppleEventDescriptor *event)
{
    return event.eventID == kAEOpenApplication &&
           [event paramDescriptorForKeyword:keyAEPropData].enumCodeValue == keyAELaunchedAsLogInItem;
}

} // namespace

SMLoginItem::SMLoginItem()
{
    const Completion<bool> answer = _startedByIt;
    // The event is there only inside the notification itself.
    id token = [NSNotificationCenter.defaultCenter
        addObserverForName:NSApplicationDidFinishLaunchingNotification
                    object:nil
                     queue:nil
                usingBlock:^(NSNotification *) {
                    answer.answer(
                        isLoginStart([NSAppleEventManager sharedAppleEventManager].currentAppleEvent));
                }];
    _launch = Observation([token] { [NSNotificationCenter.defaultCenter removeObserver:token]; });
}

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

QCoro::Task<bool> SMLoginItem::hasStartedThisCopy()
{
    return answerOf(_startedByIt);
}

} // namespace velbrix
