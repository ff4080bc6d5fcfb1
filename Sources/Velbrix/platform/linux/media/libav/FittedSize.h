#pragma once

#include <QSize>

namespace velbrix {

// A picture's size made to fit the bound: its shape kept, never larger than it
// was, and never without a pixel.
inline QSize fittedSize(QSize size, QSize bound)
{
    if (size.width() > bound.width() || size.height() > bound.height())
        size.scale(bound, Qt::KeepAspectRatio);
    return size.expandedTo({1, 1});
}

} // namespace velbrix
