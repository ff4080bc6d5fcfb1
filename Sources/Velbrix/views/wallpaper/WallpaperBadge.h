#pragma once

#include "views/wallpaper/WallpaperWords.h"

#include <QWidget>

class QLabel;

namespace velbrix {

class SymbolLabel;
class Theme;

// What the wallpaper is doing, as a symbol and a word.
class WallpaperBadge final : public QWidget {
public:
    explicit WallpaperBadge(const Theme &theme, QWidget *parent = nullptr);

    void show(WallpaperLook look);

private:
    SymbolLabel *_symbol;
    QLabel *_text;
};

} // namespace velbrix
