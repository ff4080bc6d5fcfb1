#include "platform/macos/input/CarbonHotkeyRegistrar.h"

#include "foundation/MainThreadRelay.h"
#include "platform/macos/media/FourCharCode.h"

#import <Carbon/Carbon.h>

#include <utility>

using namespace Qt::StringLiterals;

namespace velbrix {
namespace {

constexpr OSType signature = fourCharCode("VBHK");
static_assert(sizeof(EventHotKeyID) == 8);

class CarbonRegistration final : public HotkeyRegistration {
public:
    explicit CarbonRegistration(EventHotKeyRef hotKey) : _hotKey(hotKey) {}
    ~CarbonRegistration() override { UnregisterEventHotKey(_hotKey); }
    CarbonRegistration(const CarbonRegistration &) = delete;
    CarbonRegistration &operator=(const CarbonRegistration &) = delete;

private:
    EventHotKeyRef _hotKey;
};

HotkeyFailure registrationFailure(OSStatus status)
{
    if (status == eventHotKeyExistsErr)
        return {status, u"这组快捷键已被占用"_s};
    if (status == eventHotKeyInvalidErr)
        return {status, u"系统不接受这组快捷键"_s};
    return {status, u"系统无法注册快捷键（%1）"_s.arg(status)};
}

} // namespace

struct CarbonHotkeyRegistrar::Private {
    std::shared_ptr<Handlers> handlers;
    EventHandlerRef handlerRef = nullptr;

    static OSStatus hotkeyPressed(EventHandlerCallRef, EventRef event, void *userData);
};

OSStatus CarbonHotkeyRegistrar::Private::hotkeyPressed(EventHandlerCallRef, EventRef event, void *userData)
{
    EventHotKeyID hotkey = {};
    const OSStatus status = GetEventParameter(event, kEventParamDirectObject, typeEventHotKeyID, nullptr,
                                              sizeof hotkey, nullptr, &hotkey);
    if (status != noErr || hotkey.signature != signature)
        return eventNotHandledErr;
    // Still inside the system's event dispatch: the answer waits for the next turn.
    onMainThread([handlers = std::weak_ptr(static_cast<Private *>(userData)->handlers), id = hotkey.id] {
        if (const auto alive = handlers.lock(); alive && alive->pressed)
            alive->pressed(id);
    });
    return noErr;
}

CarbonHotkeyRegistrar::CarbonHotkeyRegistrar() : _d(std::make_unique<Private>()) {}

CarbonHotkeyRegistrar::~CarbonHotkeyRegistrar()
{
    if (_d->handlerRef)
        RemoveEventHandler(_d->handlerRef);
}

std::expected<void, HotkeyFailure> CarbonHotkeyRegistrar::installHandler(Handlers handlers)
{
    _d->handlers = std::make_shared<Handlers>(std::move(handlers));
    if (_d->handlerRef)
        return {};
    const EventTypeSpec kind = {kEventClassKeyboard, kEventHotKeyPressed};
    const OSStatus status = InstallEventHandler(GetApplicationEventTarget(), &Private::hotkeyPressed, 1,
                                                &kind, _d.get(), &_d->handlerRef);
    if (status != noErr)
        return std::unexpected(HotkeyFailure{status, u"系统无法接收全局快捷键（%1）"_s.arg(status)});
    return {};
}

std::expected<std::unique_ptr<HotkeyRegistration>, HotkeyFailure>
CarbonHotkeyRegistrar::registerHotkey(const HotkeyChord &chord, quint32 id)
{
    EventHotKeyRef hotKey = nullptr;
    const OSStatus status = RegisterEventHotKey(chord.keyCode, chord.modifiers, EventHotKeyID{signature, id},
                                                GetApplicationEventTarget(), 0, &hotKey);
    if (status != noErr || !hotKey)
        return std::unexpected(registrationFailure(status));
    return std::make_unique<CarbonRegistration>(hotKey);
}

} // namespace velbrix
