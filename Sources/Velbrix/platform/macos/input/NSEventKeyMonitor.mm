#include "platform/macos/input/NSEventKeyMonitor.h"

#include "platform/macos/input/KeyModifiers.h"

#import <AppKit/AppKit.h>
#import <ApplicationServices/ApplicationServices.h>

#include <algorithm>
#include <utility>
#include <vector>

using namespace Qt::StringLiterals;

namespace velbrix {
namespace {

using LocalHandler = std::function<bool(const KeyPress &)>;

static_assert(NSEventModifierFlagShift == eventShiftFlag);
static_assert(NSEventModifierFlagControl == eventControlFlag);
static_assert(NSEventModifierFlagOption == eventOptionFlag);
static_assert(NSEventModifierFlagCommand == eventCommandFlag);

KeyPress keyPress(NSEvent *event)
{
    return {event.keyCode, carbonModifiers(event.modifierFlags), event.isARepeat != NO};
}

// One monitor of AppKit; removed with its owner.
class MonitorToken {
public:
    explicit MonitorToken(id token) : _token(token) {}
    ~MonitorToken()
    {
        if (_token)
            [NSEvent removeMonitor:_token];
    }
    MonitorToken(const MonitorToken &) = delete;
    MonitorToken &operator=(const MonitorToken &) = delete;

private:
    id _token;
};

class GlobalWatch final : public KeyWatch {
public:
    explicit GlobalWatch(id token) : _token(token) {}

private:
    MonitorToken _token;
};

class LocalWatch final : public KeyWatch {
public:
    explicit LocalWatch(std::shared_ptr<void> entry) : _entry(std::move(entry)) {}

private:
    std::shared_ptr<void> _entry;
};

} // namespace

// AppKit promises no order among its monitors, so one monitor serves them all.
class NSEventKeyMonitor::LocalWatches : public std::enable_shared_from_this<LocalWatches> {
public:
    std::shared_ptr<void> add(LocalHandler pressed)
    {
        install();
        auto handler = std::make_shared<LocalHandler>(std::move(pressed));
        _handlers.push_back(handler);
        const std::weak_ptr<LocalWatches> hub = weak_from_this();
        return {handler.get(), [hub, handler](void *) mutable {
                    handler.reset();
                    if (const auto alive = hub.lock())
                        alive->sweep();
                }};
    }

private:
    void install()
    {
        if (_monitor)
            return;
        const std::weak_ptr<LocalWatches> hub = weak_from_this();
        _monitor = std::make_unique<MonitorToken>([NSEvent
            addLocalMonitorForEventsMatchingMask:NSEventMaskKeyDown
                                         handler:^NSEvent *(NSEvent *event) {
                                             const auto alive = hub.lock();
                                             return alive && alive->swallows(keyPress(event)) ? nil : event;
                                         }]);
    }
    bool swallows(const KeyPress &press) const
    {
        // A handler may end any watch, so each is asked only while it lives.
        const auto handlers = _handlers;
        return std::any_of(handlers.rbegin(), handlers.rend(),
                           [&](const std::weak_ptr<LocalHandler> &handler) {
                               const auto alive = handler.lock();
                               return alive && (*alive)(press);
                           });
    }
    void sweep()
    {
        std::erase_if(_handlers, [](const auto &handler) { return handler.expired(); });
        if (_handlers.empty())
            _monitor.reset();
    }

    std::vector<std::weak_ptr<LocalHandler>> _handlers; // oldest first
    std::unique_ptr<MonitorToken> _monitor;
};

NSEventKeyMonitor::NSEventKeyMonitor() : _locals(std::make_shared<LocalWatches>()) {}

NSEventKeyMonitor::~NSEventKeyMonitor() = default;

std::unique_ptr<KeyWatch> NSEventKeyMonitor::watchLocal(std::function<bool(const KeyPress &)> pressed)
{
    return std::make_unique<LocalWatch>(_locals->add(std::move(pressed)));
}

Result<std::unique_ptr<KeyWatch>>
NSEventKeyMonitor::watchGlobal(std::function<void(const KeyPress &)> pressed)
{
    if (!AXIsProcessTrusted())
        return failure(u"在其他应用中使用此快捷键需要辅助功能权限"_s);
    const id token = [NSEvent addGlobalMonitorForEventsMatchingMask:NSEventMaskKeyDown
                                                            handler:^(NSEvent *event) {
                                                                pressed(keyPress(event));
                                                            }];
    if (!token)
        return failure(u"系统无法监听其他应用中的按键"_s);
    return std::make_unique<GlobalWatch>(token);
}

} // namespace velbrix
