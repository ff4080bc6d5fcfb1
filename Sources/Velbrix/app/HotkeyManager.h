#pragma once

#include "app/HotkeyActions.h"
#include "foundation/Clock.h"
#include "foundation/Published.h"
#include "platform/HostFamily.h"
#include "platform/HotkeyRegistrar.h"
#include "platform/KeyMonitor.h"

#include <QHash>
#include <QObject>

#include <functional>
#include <map>
#include <memory>
#include <optional>

namespace velbrix {

class NotificationCenter;
class SettingsStore;

// Why an action's key does not work at the moment, by action.
using HotkeyProblems = QHash<HotkeyAction, QString>;

// The one owner of every global keyboard shortcut. A key that fires is only
// posted, by the name of its action; whoever owns the action observes that.
class HotkeyManager final : public QObject {
    Q_OBJECT
    VELB_PUBLISHED(HotkeyManager, HotkeyChord, recordToggleHotkey)
    VELB_PUBLISHED(HotkeyManager, HotkeyChord, hideDesktopIconsHotkey)
    VELB_PUBLISHED(HotkeyManager, HotkeyChord, hideDockHotkey)
    VELB_PUBLISHED(HotkeyManager, HotkeyChord, windowSwitcherHotkey)
    VELB_PUBLISHED(HotkeyManager, HotkeyChord, screenshotHotkey)
    VELB_PUBLISHED(HotkeyManager, HotkeyChord, clipboardHistoryHotkey)
    VELB_PUBLISHED(HotkeyManager, HotkeyAction, captureTarget, HotkeyAction::none)
    VELB_PUBLISHED(HotkeyManager, QString, captureHint)
    VELB_PUBLISHED(HotkeyManager, bool, isCaptureRefused, false) // the hint says why; set before it
    VELB_PUBLISHED(HotkeyManager, HotkeyProblems, problems)

public:
    struct Ports {
        HotkeyRegistrar &registrar;
        KeyMonitor &keys;
        std::function<void()> beep;
        HostFamily family = HostFamily::macos;
    };

    HotkeyManager(Ports ports, SettingsStore &settings, NotificationCenter &center, Clock &clock,
                  QObject *parent = nullptr);
    ~HotkeyManager() override;

    // Handler, registrations and screenshot monitors: after this the keys
    // work. A key whose notification nobody observes is left to other
    // programs, so the owners of the actions observe first.
    void install();
    // Whether some tool acts on the action.
    bool isAvailable(HotkeyAction action) const;

    // The action's name for users, in the words of this host.
    QString label(HotkeyAction action) const;
    HotkeyChord chord(HotkeyAction action) const;
    // The chord as this host writes it.
    QString chordText(HotkeyAction action) const { return chord(action).displayText(notation()); }
    // Why the action's key does not work now; empty when it does.
    QString problem(HotkeyAction action) const { return problems().value(action); }

    void beginCapture(HotkeyAction action);
    // A key press while capturing. True when the press belongs to the capture.
    bool handleCapturedKey(const KeyPress &press);
    void cancelCapture();
    // The action's default chord again. Fails when another action holds it now,
    // with words for the user; nothing has changed then.
    Result<void> resetToDefault(HotkeyAction action);

private:
    KeyNotation notation() const
    {
        return _ports.family == HostFamily::macos ? KeyNotation::symbols : KeyNotation::words;
    }
    void installHandler();
    void registerAll();
    void registerOne(const HotkeyActionInfo &info);
    void installScreenshotMonitors();
    void postLater(const QString &notification);
    void hotkeyPressed(quint32 id);
    bool screenshotKeyPressed(const KeyPress &press);
    Result<void> checkConflict(HotkeyAction action, const HotkeyChord &chord) const;
    void take(HotkeyAction action, const HotkeyChord &chord);
    void setChord(HotkeyAction action, const HotkeyChord &chord);
    void setProblem(HotkeyAction action, const QString &reason);
    void refuse(const QString &hint);
    void endCapture();

    Ports _ports;
    SettingsStore &_settings;
    NotificationCenter &_center;
    Clock &_clock;

    bool _handlerInstalled = false;
    std::map<HotkeyAction, std::unique_ptr<HotkeyRegistration>> _registrations;
    Observation _screenshotLocalMonitor;
    Observation _screenshotGlobalMonitor;
    std::optional<std::chrono::milliseconds> _lastScreenshotTriggerAt;
};

} // namespace velbrix
