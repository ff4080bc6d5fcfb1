#include "platform/macos/desktop/MacDisplays.h"

#include "platform/macos/desktop/ScreenBridge.h"
#include "platform/macos/system/SystemWatch.h"

#include <utility>

namespace velbrix {

QList<Display> MacDisplays::displays() const
{
    return displayList(screenFacts());
}

Observation MacDisplays::observe(std::function<void()> changed)
{
    return observationOf([[VBNotificationWatch alloc]
        initWithCenter:NSNotificationCenter.defaultCenter
                  name:NSApplicationDidChangeScreenParametersNotification
                posted:[changed = std::move(changed)](NSNotification *) { changed(); }]);
}

} // namespace velbrix
