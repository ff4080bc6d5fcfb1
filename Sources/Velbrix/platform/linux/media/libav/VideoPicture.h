#pragma once

#include "platform/linux/media/libav/VideoInput.h"

#include <QImage>

namespace velbrix {

// The first picture at or after the time, the last one where the film is
// shorter; as shown, made to fit the bound.
Result<QImage> videoPicture(VideoInput &input, double seconds, QSize bound, const WorkLimit &limit);

} // namespace velbrix
