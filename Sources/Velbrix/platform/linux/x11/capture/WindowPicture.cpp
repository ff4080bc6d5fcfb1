#include "platform/linux/x11/capture/WindowPicture.h"

#include "platform/linux/x11/capture/WindowSource.h"

using namespace Qt::StringLiterals;

namespace velbrix {

Result<QImage> takeWindowPicture(const X11Abilities &allowed, quint32 windowId, QSize size)
{
    const auto connection = X11Connection::open(allowed);
    if (!connection)
        return std::unexpected(connection.error());
    WindowSource source(**connection, windowId);
    const StopSignal never;
    if (const Result<void> started = source.start(never); !started)
        return std::unexpected(started.error());
    const SourceUpdate update = source.update();
    if (update.ended)
        return std::unexpected(*update.ended);
    if (update.status != FrameStatus::complete)
        return failure(u"无法取得窗口画面"_s);
    const BitmapView picture = source.picture();
    const QImage whole(picture.pixels, picture.width, picture.height, picture.stride(), QImage::Format_RGB32);
    // A scaled picture is a copy, one of the same size is not.
    return whole.scaled(size, Qt::KeepAspectRatio, Qt::SmoothTransformation).copy();
}

} // namespace velbrix
