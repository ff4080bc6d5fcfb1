#pragma once

#include "foundation/Cancellation.h"
#include "wallpaper/WallpaperTypes.h"

#include <QStringList>

namespace velbrix {

struct VideoList {
    QStringList videos;
    QStringList folders; // that were looked through, the outermost first
};

// Every file with one of the extensions in the folder and the folders in it.
// Hidden files, the insides of packages (a program, a photo library) and
// linked folders are excluded; folders that cannot be read are passed over.
// Lengths are not looked for: that order is the one by name. Any thread; empty
// once cancelled.
VideoList videosBelow(const QString &folder, const QStringList &extensions, VideoOrder order,
                      const Cancellation &cancellation);

} // namespace velbrix
