#include "platform/macos/desktop/MacDesktopVisibility.h"

#include "platform/macos/surface/DesktopLevelWindow.h"
#include "platform/macos/system/SystemWatch.h"

#import <AppKit/AppKit.h>

#include <utility>
#include <vector>

using namespace std::chrono_literals;

namespace velbrix {
namespace {

struct SessionState {
    bool isLocked = false;
    bool isSwitchedOut = false;
    bool isScreenOff = false;
};

bool isSet(NSDictionary<NSString *, id> *session, NSString *key, bool otherwise)
{
    NSNumber *value = session[key];
    return value ? value.boolValue != NO : otherwise;
}

// For a beginning in the middle of a locked session; the first key is absent
// while the session is open.
SessionState presentState()
{
    NSDictionary<NSString *, id> *session = CFBridgingRelease(CGSessionCopyCurrentDictionary());
    SessionState state;
    state.isLocked = isSet(session, @"CGSSessionScreenIsLocked", false);
    state.isSwitchedOut = !isSet(session, (__bridge NSString *)kCGSessionOnConsoleKey, true);
    state.isScreenOff = CGDisplayIsAsleep(CGMainDisplayID()) != 0;
    return state;
}

VisibilityState stateOf(const QSet<quint32> &covered, const SessionState &session)
{
    return {covered, session.isLocked || session.isSwitchedOut, session.isScreenOff};
}

QSet<quint32> presentlyCovered()
{
    return coveredDisplays(DesktopLevelWindow::visibilities());
}

// Around one change the window server announces several, to and fro.
constexpr auto settling = 500ms;

} // namespace

class MacDesktopVisibility::Announcements : public std::enable_shared_from_this<Announcements> {
public:
    explicit Announcements(Clock &clock) : _clock(clock)
    {
        follow(@"com.apple.screenIsLocked", &SessionState::isLocked, true);
        follow(@"com.apple.screenIsUnlocked", &SessionState::isLocked, false);
        NSNotificationCenter *workspace = NSWorkspace.sharedWorkspace.notificationCenter;
        follow(workspace, NSWorkspaceSessionDidResignActiveNotification, &SessionState::isSwitchedOut, true);
        follow(workspace, NSWorkspaceSessionDidBecomeActiveNotification, &SessionState::isSwitchedOut, false);
        follow(workspace, NSWorkspaceScreensDidSleepNotification, &SessionState::isScreenOff, true);
        follow(workspace, NSWorkspaceScreensDidWakeNotification, &SessionState::isScreenOff, false);
        _watches.push_back([[VBNotificationWatch alloc]
            initWithCenter:NSNotificationCenter.defaultCenter
                      name:NSWindowDidChangeOcclusionStateNotification
                    posted:[this](NSNotification *) { settle(); }]);
    }

    VisibilityState state() const { return stateOf(_covered, _session); }
    Observation add(std::function<void()> changed)
    {
        return _observers.add(std::move(changed), [self = shared_from_this()]() mutable { self.reset(); });
    }

private:
    void follow(NSNotificationName name, bool SessionState::*fact, bool value)
    {
        _watches.push_back([[VBNotificationWatch alloc]
            initWithDistributedName:name
                             posted:[this, fact, value](NSNotification *) { take(fact, value); }]);
    }
    void follow(NSNotificationCenter *center, NSNotificationName name, bool SessionState::*fact, bool value)
    {
        _watches.push_back([[VBNotificationWatch alloc]
            initWithCenter:center
                      name:name
                    posted:[this, fact, value](NSNotification *) { take(fact, value); }]);
    }
    void take(bool SessionState::*fact, bool value)
    {
        _session.*fact = value;
        report();
    }
    void settle()
    {
        _settled = _clock.after(settling, [this] {
            const QSet<quint32> before = std::exchange(_covered, presentlyCovered());
            if (before != _covered)
                report();
        });
    }
    void report()
    {
        const auto self = shared_from_this(); // a call may end the last observation
        _observers.notify();
    }

    Clock &_clock;
    std::unique_ptr<Alarm> _settled;
    SessionState _session = presentState();
    QSet<quint32> _covered = presentlyCovered();
    ObserverList<void()> _observers; // each keeps this alive
    std::vector<VBNotificationWatch *> _watches;
};

VisibilityState MacDesktopVisibility::state() const
{
    const auto announcements = _announcements.lock();
    return announcements ? announcements->state() : stateOf(presentlyCovered(), presentState());
}

Observation MacDesktopVisibility::observe(std::function<void()> changed)
{
    auto announcements = _announcements.lock();
    if (!announcements) {
        announcements = std::make_shared<Announcements>(_clock);
        _announcements = announcements;
    }
    return announcements->add(std::move(changed));
}

} // namespace velbrix
