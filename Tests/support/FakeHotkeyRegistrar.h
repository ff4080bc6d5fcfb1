#pragma once

#include "platform/HotkeyRegistrar.h"

#include <QList>
#include <QMap>
#include <QStringList>

#include <optional>
#include <utility>

namespace velbrix::test {

// Hot keys that fire when the test says so. Must outlive its registrations.
class FakeHotkeyRegistrar final : public HotkeyRegistrar {
public:
    QMap<quint32, HotkeyChord> registered; // by id, as of now
    QList<HotkeyChord> taken;              // held by other programs
    QStringList calls;                     // "install", "register 1 ⌃⌥0", "release 1"

    std::expected<void, HotkeyFailure> installHandler(Handlers handlers) override
    {
        calls.append(QStringLiteral("install"));
        _handlers = std::move(handlers);
        return {};
    }

    std::expected<std::unique_ptr<HotkeyRegistration>, HotkeyFailure> registerHotkey(const HotkeyChord &chord,
                                                                                     quint32 id) override
    {
        calls.append(QStringLiteral("register %1 %2").arg(id).arg(chord.displayText()));
        if (taken.contains(chord) || registered.values().contains(chord))
            return std::unexpected(HotkeyFailure{10, QStringLiteral("已被其他程序占用")});
        registered.insert(id, chord);
        return std::make_unique<Registration>(this, id);
    }

    // The user presses the chord: calls back when it is registered.
    void press(const HotkeyChord &chord)
    {
        for (const auto &[id, candidate] : registered.toStdMap()) {
            if (candidate == chord && _handlers.pressed)
                _handlers.pressed(id);
        }
    }
    void changeKeyboard()
    {
        if (_handlers.keyboardChanged)
            _handlers.keyboardChanged();
    }

private:
    class Registration final : public HotkeyRegistration {
    public:
        Registration(FakeHotkeyRegistrar *owner, quint32 id) : _owner(owner), _id(id) {}
        ~Registration() override
        {
            _owner->calls.append(QStringLiteral("release %1").arg(_id));
            _owner->registered.remove(_id);
        }

    private:
        FakeHotkeyRegistrar *_owner;
        quint32 _id;
    };

    Handlers _handlers;
};

} // namespace velbrix::test
