#pragma once

#include "platform/KeyMonitor.h"

#include <QString>

#include <optional>
#include <utility>

namespace velbrix::test {

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
