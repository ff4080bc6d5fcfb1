#pragma once

#include "views/ViewContext.h"
#include "views/components/Card.h"

namespace velbrix {

// How and when the video plays.
class WallpaperPlaybackCard final : public Card {
public:
    explicit WallpaperPlaybackCard(const ViewContext &context, QWidget *parent = nullptr);

private:
    void addGravity();
    void addSliders();
    void addSwitches();
    void addBattery();

    ViewContext _context;
};

} // namespace velbrix
