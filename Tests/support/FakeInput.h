#pragma once

#include "platform/HotkeyRegistrar.h"
#include "platform/KeyMonitor.h"
#include "support/Test.h"

#include <QMap>

namespace velbrix::test {

// Hot keys that fire when the test says so. Must outlive its registrations.
class FakeHotkeyRegistrar final : public HotkeyRegistrar {
public:
    QMap<quint32, HotkeyChord> registered; // by id, as of now
    QList<HotkeyChord> taken;              // held by other programs

    std::expected<void, HotkeyFailure> installHandler(Handlers handlers) override
    {
        _handlers = std::move(handlers);
        return {};
    }

    std::expected<std::unique_ptr<HotkeyRegistration>, HotkeyFailure> registerHotkey(const HotkeyChord &chord,
                                                                                     quint32 id) override
    {
        if (taken.contains(chord) || registered.values().contains(chord))
            return std::unexpected(HotkeyFailure{10, u"已被其他程序占用"_s});
        registered.insert(id, chord);
        return std::make_unique<Registration>(this, id);
    }

    // The user presses the chord: calls back when it is registered.
    void press(const HotkeyChord &chord)
    {
        const QList<quint32> ids = registered.keys(chord);
        for (const quint32 id : ids)
            _handlers.pressed(id);
    }
    void changeKeyboard() { _handlers.keyboardChanged(); }

private:
    class Registration final : public HotkeyRegistration {
    public:
        Registration(FakeHotkeyRegistrar *owner, quint32 id) : _owner(owner), _id(id) {}
        ~Registration() override { _owner->registered.remove(_id); }

    private:
        FakeHotkeyRegistrar *_owner;
        quint32 _id;
    };

    Handlers _handlers;
};

// Keys that the test presses.
class FakeKeyMonitor final : public KeyMonitor {
public:
    Observation observeLocal(std::function<bool(const KeyPress &)> pressed) override
    {
        return _local.add(std::move(pressed));
    }
    Result<Observation> observeGlobal(std::function<void(const KeyPress &)> pressed) override
    {
        return _global.add(std::move(pressed));
    }

    bool isObservedLocally() const { return !_local.isEmpty(); }
    bool isObservedGlobally() const { return !_global.isEmpty(); }

    // A key for one of the program's own windows. True: swallowed.
    bool pressLocal(const KeyPress &key) { return _local.ask(key); }
    // A key for any program.
    void pressGlobal(const KeyPress &key) { _global.notify(key); }

private:
    ObserverList<bool(const KeyPress &)> _local;
    ObserverList<void(const KeyPress &)> _global;
};

} // namespace velbrix::test
