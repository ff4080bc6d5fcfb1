#include "capture/CaptureSize.h"

#include <algorithm>
#include <cmath>

namespace velbrix {
namespace {

int rounded(double value)
{
    // A hostile geometry must not overflow what follows.
    return static_cast<int>(std::lround(std::clamp(value, 0.0, 100000.0)));
}

int evenAtLeastTwo(int value)
{
    return std::max(value / 2 * 2, 2);
}

QSize even(QSize size)
{
    return {evenAtLeastTwo(size.width()), evenAtLeastTwo(size.height())};
}

QSize fitted(QSize size, int limit)
{
    if (size.width() <= limit && size.height() <= limit)
        return size;
    const double factor =
        std::min(static_cast<double>(limit) / size.width(), static_cast<double>(limit) / size.height());
    return even({rounded(size.width() * factor), rounded(size.height() * factor)});
}

QSize windowSize(QSize scaled, QSize unscaled)
{
    if (scaled.width() >= 2 && scaled.height() >= 2)
        return scaled;
    return {std::max(unscaled.width(), 2), std::max(unscaled.height(), 2)};
}

QSize fullScreenSize(QSize scaled, QSize unscaled, QSize display)
{
    const bool plausible =
        scaled.width() <= 3 * display.width() / 2 && scaled.height() <= 3 * display.height() / 2;
    if (plausible)
        return scaled.width() < 100 || scaled.height() < 100 ? display : scaled;
    // The scale does not belong to this display: judge by the unscaled size.
    const bool tooSmall =
        2 * display.width() / 3 > unscaled.width() || 2 * display.height() / 3 > unscaled.height();
    return tooSmall ? display : unscaled;
}

} // namespace

QSize captureSize(RecordMode mode, RecordQuality quality, const CaptureGeometry &geometry)
{
    const double scale = std::max(geometry.pointPixelScale, 1.0);
    const QSize scaled(rounded(geometry.contentSize.width() * scale),
                       rounded(geometry.contentSize.height() * scale));
    const QSize unscaled(rounded(geometry.contentSize.width()), rounded(geometry.contentSize.height()));
    const QSize display = geometry.displayPixels.expandedTo({2, 2});

    QSize size = even(mode == RecordMode::window ? windowSize(scaled, unscaled)
                                                 : fullScreenSize(scaled, unscaled, display));
    switch (quality) {
    case RecordQuality::original:
        return fitted(size, 3840);
    case RecordQuality::half:
        return fitted(even({size.width() / 2, size.height() / 2}), 2560);
    case RecordQuality::p1080:
        return fitted(fitted(size, 1080), 2560);
    }
    Q_UNREACHABLE();
}

int videoBitRate(RecordQuality quality, QSize size)
{
    const bool original = quality == RecordQuality::original;
    const qint64 wanted = qint64(size.width()) * size.height() * (original ? 5 : 4);
    return static_cast<int>(std::clamp<qint64>(wanted, 4'000'000, original ? 40'000'000 : 20'000'000));
}

int streamQueueDepth(RecordQuality quality)
{
    return quality == RecordQuality::original ? 5 : 3;
}

} // namespace velbrix
