#include "platform/macos/system/IOPSPowerSource.h"

#include "foundation/MainThreadRelay.h"
#include "platform/macos/system/BatteryRule.h"
#include "platform/macos/system/FoundationBridge.h"

#import <IOKit/ps/IOPSKeys.h>
#import <IOKit/ps/IOPowerSources.h>

#include <utility>

using namespace Qt::StringLiterals;

namespace velbrix {
namespace {

QList<PowerSourceFacts> powerSources()
{
    QList<PowerSourceFacts> facts;
    const id blob = CFBridgingRelease(IOPSCopyPowerSourcesInfo());
    if (!blob)
        return facts;
    const CFTypeRef info = (__bridge CFTypeRef)blob;
    NSArray *sources = CFBridgingRelease(IOPSCopyPowerSourcesList(info));
    for (id source in sources) {
        NSDictionary<NSString *, id> *description =
            (__bridge NSDictionary *)IOPSGetPowerSourceDescription(info, (__bridge CFTypeRef)source);
        facts.append(
            { toQString(description[@kIOPSTypeKey]), toQString(description[@kIOPSPowerSourceStateKey]) });
    }
    return facts;
}

class Monitor {
public:
    explicit Monitor(std::function<void()> changed)
        : _changed(std::make_shared<std::function<void()>>(std::move(changed))),
          _source(IOPSNotificationCreateRunLoopSource(powerChanged, this))
    {
        if (_source)
            CFRunLoopAddSource(CFRunLoopGetMain(), _source, kCFRunLoopCommonModes);
    }
    ~Monitor()
    {
        if (!_source)
            return;
        CFRunLoopSourceInvalidate(_source);
        CFRelease(_source);
    }
    Monitor(const Monitor &) = delete;
    Monitor &operator=(const Monitor &) = delete;

    bool isRunning() const { return _source != nullptr; }

private:
    static void powerChanged(void *monitor)
    {
        // At the next turn, so that the observer may end the monitor.
        onMainThread([target = std::weak_ptr(static_cast<Monitor *>(monitor)->_changed)] {
            if (const auto alive = target.lock())
                (*alive)();
        });
    }

    std::shared_ptr<std::function<void()>> _changed;
    CFRunLoopSourceRef _source;
};

} // namespace

Result<Observation> IOPSPowerSource::observe(std::function<void()> changed)
{
    auto monitor = std::make_shared<Monitor>(std::move(changed));
    if (!monitor->isRunning())
        return failure(u"系统无法报告电源的变化"_s);
    return Observation::keeping(std::move(monitor));
}

bool IOPSPowerSource::isOnBattery() const
{
    return runsOnBattery(powerSources());
}

} // namespace velbrix
