#pragma once

#include <QString>
#include <QStringList>

#include <functional>

class QMimeData;
class QWidget;

namespace velbrix {

class WallpaperController;

// Opens the system's panel for one video; `chosen` is not called when the user
// thinks better of it or the owner is gone by then.
void openVideoPanel(QWidget *owner, WallpaperController &wallpaper, const QString &title,
                    std::function<void(const QString &path)> chosen);

// The one file with one of the extensions that is being dragged; else empty.
QString draggedVideo(const QMimeData *data, const QStringList &extensions);

} // namespace velbrix
