#pragma once

#include "platform/linux/desktop/DesktopSession.h"

namespace velbrix {

// The windows of the X server say which desktop runs. Every question has a
// connection of its own.
class X11DesktopSession final : public DesktopSession {
public:
    DesktopSigns signs() const override;
    std::unique_ptr<DesktopPicture> rootPicture(const QString &folder) const override;
    void forgetRootPicture() const override;
};

} // namespace velbrix
