#pragma once

#include "platform/DesktopPicture.h"
#include "platform/linux/desktop/Desktop.h"

#include <memory>

namespace velbrix {

// What the window system of this session knows of its desktop. Shared by
// sequences that may outlive whoever began them.
class DesktopSession {
public:
    virtual ~DesktopSession() = default;

    // By what runs, not by what is installed. Any thread; blocks.
    virtual DesktopSigns signs() const = 0;
    // The picture behind all windows that the window system keeps itself. What
    // must be kept of a former one goes into the folder.
    virtual std::unique_ptr<DesktopPicture> rootPicture(const QString &folder) const = 0;
    // Nobody finds the picture any more that programs leave there for others.
    virtual void forgetRootPicture() const = 0;
};

} // namespace velbrix
