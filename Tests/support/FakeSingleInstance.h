#pragma once

#include "platform/SingleInstance.h"

#include <QObject>
#include <QStringList>

#include <utility>

namespace velbrix::test {

// The place of one copy; the test plays the others.
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
        Observation observation = _observers.add(std::move(wake));
        tell();
        return observation;
    }
    void leave() override { calls.append(QStringLiteral("leave")); }

    // A later copy asks this one to come forward, which is kept until somebody observes.
    void wake()
    {
        _isAsked = true;
        tell();
    }

private:
    // Never from inside the call that observes.
    void tell()
    {
        if (_observers.isEmpty() || !_isAsked)
            return;
        QMetaObject::invokeMethod(
            &_context,
            [this] {
                if (std::exchange(_isAsked, false))
                    _observers.notify();
            },
            Qt::QueuedConnection);
    }

    QObject _context;
    ObserverList<void()> _observers;
    bool _isAsked = false;
};

} // namespace velbrix::test
