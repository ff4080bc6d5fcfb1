#pragma once

#include "platform/SingleInstance.h"

namespace velbrix {

// Other copies are found among the running applications by the bundle
// identifier, and woken by a distributed notification.
class MacSingleInstance final : public SingleInstance {
public:
    bool claim() override;
    void wakeOther() override;
    Observation observeWake(std::function<void()> wake) override;
};

} // namespace velbrix
