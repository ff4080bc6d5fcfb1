#pragma once

#include "platform/SingleInstance.h"

#include <QString>

namespace velbrix {

// Other copies are found among the running applications by the bundle
// identifier, and woken by a distributed notification. The system makes no
// second copy when the user opens the program again, so one that leaves has it
// opened after itself.
class MacSingleInstance final : public SingleInstance {
public:
    bool claim() override;
    bool wakeOther() override;
    Observation observeWake(std::function<void()> wake) override;
    void leave() override;

private:
    bool _opensAgain = false;
    Observation _wakes; // while it leaves, as the next
    Observation _reopens;
};

// Has the system open that bundle as soon as this process has ended.
void openAfterThis(const QString &bundle);

} // namespace velbrix
