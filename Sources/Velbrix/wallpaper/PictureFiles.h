#pragma once

#include "foundation/Result.h"

#include <QImage>
#include <QString>

namespace velbrix {

// Writes the picture as a JPEG named after the time (milliseconds since 1970)
// into the folder, which is made when missing, and leaves only the newest six
// JPEGs there. Answers the new file. Any thread.
Result<QString> writePicture(const QImage &image, const QString &folder, qint64 stamp);

inline constexpr int keptPictures = 6;

} // namespace velbrix
