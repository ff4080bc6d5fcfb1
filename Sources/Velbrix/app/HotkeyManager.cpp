#include "app/HotkeyManager.h"

#include "app/HostText.h"
#include "foundation/Log.h"
#include "foundation/NotificationCenter.h"
#include "foundation/SettingsStore.h"

#include <algorithm>
#include <utility>

using namespace Qt::StringLiterals;
using namespace std::chrono_literals;

namespace velbrix {
namespace {

constexpr auto screenshotDebounce = 350ms;
constexpr quint32 escapeKey = 53;
constexpr quint32 anyModifier =
    HotkeyChord::cmdKey | HotkeyChord::shiftKey | HotkeyChord::optionKey | HotkeyChord::controlKey;

HotkeyChord storedChord(const SettingsStore &settings, const HotkeyActionInfo &info)
{
    const auto json = settings.json(info.settingsKey);
    const auto chord = json ? HotkeyChord::fromJson(*json) : std::nullopt;
    return chord && !chord->isEmpty() ? *chord : info.defaultChord;
}

} // namespace

HotkeyManager::HotkeyManager(Ports ports, SettingsStore &settings, NotificationCenter &center, Clock &clock,
                             QObject *parent)
    : QObject(parent), _ports(std::move(ports)), _settings(settings), _center(center), _clock(clock)
{
    for (const HotkeyActionInfo &info : hotkeyActions())
        setChord(info.action, storedChord(_settings, info));
}

HotkeyManager::~HotkeyManager() = default;

void HotkeyManager::install()
{
    installHandler();
    registerAll();
    installScreenshotMonitors();
}

bool HotkeyManager::isAvailable(HotkeyAction action) const
{
    return _center.hasObserver(hotkeyActionInfo(action).notification);
}

QString HotkeyManager::label(HotkeyAction action) const
{
    return hostText(hotkeyActionInfo(action).label, _ports.family);
}

HotkeyChord HotkeyManager::chord(HotkeyAction action) const
{
    switch (action) {
    case HotkeyAction::none:
        return {};
    case HotkeyAction::recordToggle:
        return _recordToggleHotkey;
    case HotkeyAction::hideDesktopIcons:
        return _hideDesktopIconsHotkey;
    case HotkeyAction::hideDock:
        return _hideDockHotkey;
    case HotkeyAction::windowSwitcher:
        return _windowSwitcherHotkey;
    case HotkeyAction::screenshot:
        return _screenshotHotkey;
    case HotkeyAction::clipboardHistory:
        return _clipboardHistoryHotkey;
    }
    Q_UNREACHABLE();
}

void HotkeyManager::beginCapture(HotkeyAction action)
{
    _isCaptureRefused = false;
    _captureHint = action == HotkeyAction::screenshot ? u"请按下截图键（可单键，如 PrtSc；Esc 取消）"_s
                                                      : u"请按下：至少一个修饰键 + 主键（Esc 取消）"_s;
    _captureTarget = action;
    // A registered key would fire instead of reaching the capture.
    _registrations.clear();
}

bool HotkeyManager::handleCapturedKey(const KeyPress &press)
{
    const HotkeyAction action = _captureTarget;
    if (action == HotkeyAction::none)
        return false;
    if (press.keyCode == escapeKey) {
        cancelCapture();
        return true;
    }
    if (press.isRepeat)
        return true;
    const bool valid = action == HotkeyAction::screenshot
                           ? !isModifierKeyCode(press.keyCode)
                           : (press.modifiers & anyModifier) != 0 && !isModifierKeyCode(press.keyCode);
    const HotkeyChord chord{press.keyCode, press.modifiers & anyModifier};
    if (!valid || chord.isEmpty()) {
        if (isModifierKeyCode(press.keyCode))
            return true; // the chord is still being built
        refuse(action == HotkeyAction::screenshot
                   ? u"无效按键，请重试（Esc 取消）"_s
                   : u"无效：必须带 %1 至少一个修饰键"_s.arg(modifierNames(notation())));
        return true;
    }
    if (const auto free = checkConflict(action, chord); free)
        take(action, chord);
    else
        refuse(free.error().message);
    return true;
}

void HotkeyManager::cancelCapture()
{
    if (_captureTarget != HotkeyAction::none)
        endCapture();
}

Result<void> HotkeyManager::resetToDefault(HotkeyAction action)
{
    const HotkeyChord chord = hotkeyActionInfo(action).defaultChord;
    const auto free = checkConflict(action, chord);
    if (free)
        take(action, chord);
    else
        _ports.beep();
    return free;
}

void HotkeyManager::installHandler()
{
    if (_handlerInstalled)
        return;
    HotkeyRegistrar::Handlers handlers;
    handlers.pressed = [this](quint32 id) { hotkeyPressed(id); };
    handlers.keyboardChanged = [this] {
        if (_captureTarget == HotkeyAction::none)
            registerAll();
    };
    const auto installed = _ports.registrar.installHandler(std::move(handlers));
    _handlerInstalled = installed.has_value();
    if (!installed)
        log::line(u"Hotkey"_s, u"InstallEventHandler failed: "_s + QString::number(installed.error().status));
}

void HotkeyManager::registerAll()
{
    _registrations.clear();
    for (const HotkeyActionInfo &info : hotkeyActions()) {
        if (info.id != 0)
            registerOne(info);
    }
}

void HotkeyManager::registerOne(const HotkeyActionInfo &info)
{
    const HotkeyChord wanted = chord(info.action);
    if (wanted.isEmpty() || !isAvailable(info.action))
        return;
    auto registration = _ports.registrar.registerHotkey(wanted, info.id);
    if (registration) {
        _registrations[info.action] = std::move(*registration);
        setProblem(info.action, {});
        return;
    }
    const HotkeyFailure &failed = registration.error();
    log::line(u"Hotkey"_s, u"RegisterEventHotKey(%1) failed: %2"_s.arg(info.name).arg(failed.status));
    setProblem(info.action, failed.message);
}

void HotkeyManager::installScreenshotMonitors()
{
    _screenshotLocalMonitor.reset();
    _screenshotGlobalMonitor.reset();
    if (_screenshotHotkey.value().isEmpty() || !isAvailable(HotkeyAction::screenshot))
        return;
    _screenshotLocalMonitor =
        _ports.keys.observeLocal([this](const KeyPress &press) { return screenshotKeyPressed(press); });
    auto global = _ports.keys.observeGlobal([this](const KeyPress &press) { screenshotKeyPressed(press); });
    setProblem(HotkeyAction::screenshot, global ? QString() : global.error().message);
    if (global)
        _screenshotGlobalMonitor = std::move(*global);
}

void HotkeyManager::postLater(const QString &notification)
{
    QMetaObject::invokeMethod(
        this, [this, notification] { _center.post(notification); }, Qt::QueuedConnection);
}

void HotkeyManager::hotkeyPressed(quint32 id)
{
    for (const HotkeyActionInfo &info : hotkeyActions()) {
        if (id != 0 && info.id == id)
            postLater(info.notification);
    }
}

bool HotkeyManager::screenshotKeyPressed(const KeyPress &press)
{
    const HotkeyChord wanted = _screenshotHotkey;
    if (_captureTarget != HotkeyAction::none || wanted.isEmpty() || press.keyCode != wanted.keyCode)
        return false;
    // Further modifiers may be held: the key must work in the middle of anything.
    if ((press.modifiers & wanted.modifiers) != wanted.modifiers)
        return false;
    const auto now = _clock.uptime();
    // Both monitors see one press, and a held key repeats.
    if (_lastScreenshotTriggerAt && now - *_lastScreenshotTriggerAt < screenshotDebounce)
        return true;
    _lastScreenshotTriggerAt = now;
    postLater(hotkeyActionInfo(HotkeyAction::screenshot).notification);
    return true;
}

Result<void> HotkeyManager::checkConflict(HotkeyAction action, const HotkeyChord &wanted) const
{
    for (const HotkeyActionInfo &info : hotkeyActions()) {
        const HotkeyChord held = chord(info.action);
        if (info.action != action && !held.isEmpty() && held == wanted)
            return failure(u"与"_s + label(info.action) + u"冲突，请换一组"_s);
    }
    return {};
}

void HotkeyManager::take(HotkeyAction action, const HotkeyChord &chord)
{
    setChord(action, chord);
    _settings.set(hotkeyActionInfo(action).settingsKey, chord.toJson());
    endCapture();
}

void HotkeyManager::setChord(HotkeyAction action, const HotkeyChord &chord)
{
    switch (action) {
    case HotkeyAction::none:
        break;
    case HotkeyAction::recordToggle:
        _recordToggleHotkey = chord;
        break;
    case HotkeyAction::hideDesktopIcons:
        _hideDesktopIconsHotkey = chord;
        break;
    case HotkeyAction::hideDock:
        _hideDockHotkey = chord;
        break;
    case HotkeyAction::windowSwitcher:
        _windowSwitcherHotkey = chord;
        break;
    case HotkeyAction::screenshot:
        _screenshotHotkey = chord;
        break;
    case HotkeyAction::clipboardHistory:
        _clipboardHistoryHotkey = chord;
        break;
    }
}

void HotkeyManager::setProblem(HotkeyAction action, const QString &reason)
{
    HotkeyProblems all = _problems;
    if (reason.isEmpty())
        all.remove(action);
    else
        all.insert(action, reason);
    _problems = all;
}

void HotkeyManager::refuse(const QString &hint)
{
    _isCaptureRefused = true;
    _captureHint = hint;
    _ports.beep();
}

void HotkeyManager::endCapture()
{
    _captureTarget = HotkeyAction::none;
    _isCaptureRefused = false;
    _captureHint = QString();
    registerAll();
    installScreenshotMonitors();
}

} // namespace velbrix
