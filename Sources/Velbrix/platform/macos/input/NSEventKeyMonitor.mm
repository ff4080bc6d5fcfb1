#include "platform/macos/input/NSEventKeyMonitor.h"

#include "platform/macos/input/KeyModifiers.h"

#import <AppKit/AppKit.h>
#import <ApplicationServices/ApplicationServices.h>

#include <utility>

using namespace Qt::StringLiterals;

namespace velbrix {
namespace {

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

} // namespace

// AppKit promises no order among its monitors, so one monitor serves them all.
class NSEventKeyMonitor::LocalKeys : public std::enable_shared_from_this<LocalKeys> {
public:
    Observation observe(std::function<bool(const KeyPress &)> pressed)
    {
        install();
        return _observers.add(std::move(pressed), [self = weak_from_this()] {
            if (const auto alive = self.lock(); alive && alive->_observers.isEmpty())
                alive->_monitor.reset();
        });
    }

private:
    void install()
    {
        if (_monitor)
            return;
        const std::weak_ptr<LocalKeys> self = weak_from_this();
        _monitor = std::make_unique<MonitorToken>([NSEvent
            addLocalMonitorForEventsMatchingMask:NSEventMaskKeyDown
                                         handler:^NSEvent *(NSEvent *event) {
                                             const auto alive = self.lock();
                                             return alive && alive->_observers.ask(keyPress(event)) ? nil
                                                                                                    : event;
                                         }]);
    }

    ObserverList<bool(const KeyPress &)> _observers;
    std::unique_ptr<MonitorToken> _monitor;
};

NSEventKeyMonitor::NSEventKeyMonitor() : _local(std::make_shared<LocalKeys>()) {}

NSEventKeyMonitor::~NSEventKeyMonitor() = default;

Observation NSEventKeyMonitor::observeLocal(std::function<bool(const KeyPress &)> pressed)
{
    return _local->observe(std::move(pressed));
}

Result<Observation> NSEventKeyMonitor::observeGlobal(std::function<void(const KeyPress &)> pressed)
{
    if (!AXIsProcessTrusted())
        return failure(u"在其他应用中使用此快捷键需要辅助功能权限"_s);
    const id token = [NSEvent addGlobalMonitorForEventsMatchingMask:NSEventMaskKeyDown
                                                            handler:^(NSEvent *event) {
                                                                pressed(keyPress(event));
                                                            }];
    if (!token)
        return failure(u"系统无法监听其他应用中的按键"_s);
    return Observation::keeping(std::make_shared<MonitorToken>(token));
}

} // namespace velbrix
