#include "platform/macos/desktop/MacDisplays.h"

#include "platform/macos/desktop/ScreenBridge.h"
#include "platform/macos/system/SystemWatch.h"

#include <utility>
#include <vector>

namespace velbrix {

struct MacDisplays::Private {
    std::vector<VBNotificationWatch *> watches;
};

MacDisplays::MacDisplays() : _d(std::make_unique<Private>()) {}

MacDisplays::~MacDisplays() = default;

QList<Display> MacDisplays::displays() const
{
    return displayList(screenFacts());
}

void MacDisplays::observe(std::function<void()> changed)
{
    _d->watches.push_back([[VBNotificationWatch alloc]
        initWithCenter:NSNotificationCenter.defaultCenter
                  name:NSApplicationDidChangeScreenParametersNotification
                posted:[changed = std::move(changed)](NSNotification *) { changed(); }]);
}

} // namespace velbrix
