#pragma once

#include "platform/SingleInstance.h"

#include <QStringList>

#include <utility>

namespace velbrix::test {

class FakeSingleInstance final : public SingleInstance {
public:
    bool isTaken = false; // another copy holds the place
    QStringList calls;    // "claim", "wakeOther", "observeWake"

    bool claim() override
    {
        calls.append(QStringLiteral("claim"));
        return !isTaken;
    }
    void wakeOther() override { calls.append(QStringLiteral("wakeOther")); }
    Observation observeWake(std::function<void()> wake) override
    {
        calls.append(QStringLiteral("observeWake"));
        return _observers.add(std::move(wake));
    }

    // A later copy asks this one to come forward.
    void wake() { _observers.notify(); }

private:
    ObserverList<void()> _observers;
};

} // namespace velbrix::test
