#pragma once

#include "wallpaper/WallpaperTypes.h"

#include <QList>
#include <QWidget>

namespace velbrix {

class Theme;

// How the displays stand beside each other.
class DisplayMap final : public QWidget {
public:
    explicit DisplayMap(const Theme &theme, QWidget *parent = nullptr);

    void show(const QList<WallpaperDisplayInfo> &displays, bool isPaused);

protected:
    void paintEvent(QPaintEvent *event) override;

private:
    const Theme &_theme;
    QList<WallpaperDisplayInfo> _displays;
    bool _isPaused = false;
};

} // namespace velbrix
