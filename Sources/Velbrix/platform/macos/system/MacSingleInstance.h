#pragma once

#include "platform/SingleInstance.h"

#include <memory>

namespace velbrix {

// Other copies are found among the running applications by the bundle
// identifier, and woken by a distributed notification.
class MacSingleInstance final : public SingleInstance {
public:
    MacSingleInstance();
    ~MacSingleInstance() override;

    bool claim() override;
    void wakeOther() override;
    void observeWake(std::function<void()> wake) override;

private:
    struct Private;
    std::unique_ptr<Private> _d;
};

} // namespace velbrix
