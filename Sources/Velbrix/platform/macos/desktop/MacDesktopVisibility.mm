#include "platform/macos/desktop/MacDesktopVisibility.h"

#include "platform/macos/desktop/ScreenBridge.h"
#include "platform/macos/surface/DesktopLevelWindow.h"
#include "platform/macos/system/SystemWatch.h"

#import <AppKit/AppKit.h>

#include <utility>
#include <vector>

#include <unistd.h>

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

QHash<quint32, QRect> workAreas()
{
    QHash<quint32, QRect> areas;
    for (const Display &display : displayList(screenFacts()))
        areas.insert(display.id, display.visibleFrame);
    return areas;
}

// Of other programs, in the ports' coordinates, which are the window server's.
QRegion opaqueWindows()
{
    NSArray<NSDictionary<NSString *, id> *> *windows = CFBridgingRelease(CGWindowListCopyWindowInfo(
        kCGWindowListOptionOnScreenOnly | kCGWindowListExcludeDesktopElements, kCGNullWindowID));
    QRegion covered;
    for (NSDictionary<NSString *, id> *window in windows) {
        NSNumber *level = window[(__bridge NSString *)kCGWindowLayer];
        NSNumber *alpha = window[(__bridge NSString *)kCGWindowAlpha];
        NSNumber *owner = window[(__bridge NSString *)kCGWindowOwnerPID];
        NSDictionary<NSString *, id> *bounds = window[(__bridge NSString *)kCGWindowBounds];
        CGRect frame{};
        if (!level || level.intValue != 0 || !alpha || alpha.doubleValue < 1 || !owner ||
            owner.intValue == ::getpid() || !bounds ||
            !CGRectMakeWithDictionaryRepresentation((__bridge CFDictionaryRef)bounds, &frame))
            continue;
        covered += QRectF(frame.origin.x, frame.origin.y, frame.size.width, frame.size.height).toRect();
    }
    return covered;
}

// The windows of the desktop's level say when nothing of them is seen. At the
// Dock they still are when another program's window fills all beside it.
QSet<quint32> presentlyCovered()
{
    return coveredDisplays(DesktopLevelWindow::visibilities()) | displaysBehind(workAreas(), opaqueWindows());
}

// Around one change the window server announces several, to and fro.
constexpr auto settling = 500ms;
// Nobody announces that another program's window has grown or shrunk.
constexpr auto lookInterval = 2s;

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
        _settled = _clock.after(settling, [this] { look(); });
    }
    void look()
    {
        const QSet<quint32> before = std::exchange(_covered, presentlyCovered());
        if (before != _covered)
            report();
    }
    void report()
    {
        const auto self = shared_from_this(); // a call may end the last observation
        _observers.notify();
    }

    Clock &_clock;
    std::unique_ptr<Alarm> _settled;
    const std::unique_ptr<Alarm> _looks = _clock.every(lookInterval, [this] { look(); });
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
