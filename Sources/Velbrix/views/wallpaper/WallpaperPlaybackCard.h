#pragma once

#include "views/ViewContext.h"
#include "views/components/Card.h"

namespace velbrix {

class SettingRow;

// How and when the video plays.
class WallpaperPlaybackCard final : public Card {
public:
    explicit WallpaperPlaybackCard(const ViewContext &context, QWidget *parent = nullptr);

protected:
    void showEvent(QShowEvent *event) override;

private:
    void addGravity();
    void addSliders();
    void addSwitches();
    void addPlaylist();
    void addReturn();
    void addBattery();
    void showLogin();

    ViewContext _context;
    SettingRow *_login = nullptr; // says what the return needs besides
};

} // namespace velbrix
