#pragma once

#include "platform/SingleInstance.h"

#include <QStringList>

#include <utility>

namespace velbrix::test {

class FakeSingleInstance final : public SingleInstance {
public:
    bool isTaken = false;   // another copy holds the place
    bool isLeaving = false; // and goes before it can be woken
    QStringList calls;      // "claim", "wakeOther", "observeWake", "leave"

    bool claim() override
    {
        calls.append(QStringLiteral("claim"));
        return !isTaken;
    }
    bool wakeOther() override
    {
        calls.append(QStringLiteral("wakeOther"));
        if (isLeaving)
            isTaken = false;
        return !isLeaving;
    }
    Observation observeWake(std::function<void()> wake) override
    {
        calls.append(QStringLiteral("observeWake"));
        return _observers.add(std::move(wake));
    }
    void leave() override { calls.append(QStringLiteral("leave")); }

    // A later copy asks this one to come forward.
    void wake() { _observers.notify(); }

private:
    ObserverList<void()> _observers;
};

} // namespace velbrix::test
