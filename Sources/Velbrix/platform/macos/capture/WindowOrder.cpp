#include "platform/macos/capture/WindowOrder.h"

#include <algorithm>

namespace velbrix {

QList<CapturableWindow> frontToBack(QList<CapturableWindow> windows, const QList<quint32> &windowIds)
{
    QList<CapturableWindow> ordered;
    for (const quint32 windowId : windowIds) {
        const auto found = std::ranges::find(windows, windowId, &CapturableWindow::windowId);
        if (found == windows.end())
            continue;
        ordered.append(*found);
        windows.erase(found);
    }
    return ordered + windows;
}

} // namespace velbrix
