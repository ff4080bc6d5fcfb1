#include "platform/macos/WindowOrder.h"

#include <QHash>

#include <algorithm>

namespace velbrix {

QList<CapturableWindow> frontToBack(QList<CapturableWindow> windows, const QList<quint32> &windowIds)
{
    QHash<quint32, qsizetype> places;
    for (qsizetype place = 0; place < windowIds.size(); ++place)
        places.insert(windowIds[place], place);
    std::ranges::stable_sort(windows, {}, [&](const CapturableWindow &window) {
        return places.value(window.windowId, windowIds.size());
    });
    return windows;
}

} // namespace velbrix
