#pragma once

#include "foundation/Cancellation.h"

#include <QStringList>

namespace velbrix {

// Every video in the folder and the folders in it, by name as people sort.
// Hidden files, the insides of packages (a program, a photo library) and
// linked folders are excluded; folders that cannot be read are passed over.
// Any thread; empty once cancelled.
QStringList videosBelow(const QString &folder, const Cancellation &cancellation);

} // namespace velbrix
