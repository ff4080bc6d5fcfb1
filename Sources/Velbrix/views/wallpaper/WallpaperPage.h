#pragma once

#include "views/Page.h"
#include "views/ViewContext.h"

namespace velbrix {

// The live wallpaper.
class WallpaperPage final : public Page {
public:
    explicit WallpaperPage(const ViewContext &context, QWidget *parent = nullptr);
};

} // namespace velbrix
