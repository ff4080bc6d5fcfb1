#include "platform/linux/x11/visibility/X11DesktopVisibility.h"

#include "platform/linux/desktop/SessionLock.h"
#include "platform/linux/x11/X11EventSource.h"
#include "platform/linux/x11/visibility/ScreenCover.h"
#include "platform/linux/x11/visibility/ScreenPower.h"

#include <utility>

using namespace std::chrono_literals;

namespace velbrix {

namespace {

// A window that becomes full-screen does so in several steps.
constexpr auto rest = 100ms;
// Monitors are switched off and on without an event. Somebody waits for the
// picture when they come back.
constexpr auto askWhileOn = 5s;
constexpr auto askWhileOff = 1s;

} // namespace

// Everything that runs while somebody watches.
class X11DesktopVisibility::Watcher {
public:
    Watcher(Clock &clock, std::function<void()> changed) : _clock(clock), _changed(std::move(changed))
    {
        auto events = X11EventSource::open([this](const xcb_generic_event_t &event) { handleEvent(event); });
        if (events) {
            _events = std::move(*events);
            _cover = std::make_unique<ScreenCover>(_events->connection());
            _power = std::make_unique<ScreenPower>(_events->connection());
            _state.coveredDisplays = _cover->read();
            _state.isScreenOff = _power->isOff();
            askPowerLater();
        }
        QObject::connect(&_lock, &SessionLock::changed, &_lock, [this] { update(); });
    }

    const VisibilityState &state() const { return _state; }

private:
    void handleEvent(const xcb_generic_event_t &event)
    {
        if (_power->handleEvent(event))
            update();
        else if (!_soon && _cover->handleEvent(event))
            _soon = _clock.after(rest, [this] {
                _soon.reset();
                _isCoverStale = true;
                update();
            });
    }

    void askPowerLater()
    {
        if (!_power->mustBeAsked())
            return;
        _ask = _clock.after(_state.isScreenOff ? askWhileOff : askWhileOn, [this] {
            askPowerLater();
            update();
        });
    }

    void update()
    {
        VisibilityState now = _state;
        if (std::exchange(_isCoverStale, false))
            now.coveredDisplays = _cover->read();
        if (_power)
            now.isScreenOff = _power->isOff();
        now.isSessionLocked = _lock.isLocked();
        if (now == _state)
            return;
        const bool hasPowerChanged = now.isScreenOff != _state.isScreenOff;
        _state = std::move(now);
        if (hasPowerChanged)
            askPowerLater();
        const auto changed = _changed;
        changed();
    }

    Clock &_clock;
    const std::function<void()> _changed;
    std::unique_ptr<X11EventSource> _events;
    std::unique_ptr<ScreenCover> _cover;
    std::unique_ptr<ScreenPower> _power;
    SessionLock _lock;
    VisibilityState _state;
    bool _isCoverStale = false;
    std::unique_ptr<Alarm> _soon;
    std::unique_ptr<Alarm> _ask;
};

struct X11DesktopVisibility::Watching {
    ObserverList<void()> observers;
    std::unique_ptr<Watcher> watcher; // while there are observers
};

X11DesktopVisibility::X11DesktopVisibility(Clock &clock)
    : _clock(clock), _watching(std::make_shared<Watching>())
{
}

X11DesktopVisibility::~X11DesktopVisibility()
{
    _watching->watcher.reset();
}

VisibilityState X11DesktopVisibility::state() const
{
    return _watching->watcher ? _watching->watcher->state() : Watcher(_clock, [] {}).state();
}

Observation X11DesktopVisibility::observe(std::function<void()> changed)
{
    Observation observation = _watching->observers.add(std::move(changed), [watching = _watching] {
        if (watching->observers.isEmpty())
            watching->watcher.reset();
    });
    if (!_watching->watcher)
        _watching->watcher = std::make_unique<Watcher>(_clock, [watching = std::weak_ptr(_watching)] {
            if (const auto alive = watching.lock())
                alive->observers.notify();
        });
    return observation;
}

} // namespace velbrix
