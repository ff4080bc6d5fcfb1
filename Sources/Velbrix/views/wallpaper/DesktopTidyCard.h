#pragma once

#include "views/ViewContext.h"
#include "views/components/Card.h"

class QPushButton;

namespace velbrix {

class SettingRow;

// Desktop files behind the wallpaper, and the Dock out of the way.
class DesktopTidyCard final : public Card {
public:
    explicit DesktopTidyCard(const ViewContext &context, QWidget *parent = nullptr);

private:
    void addIcons();
    void addDock();
    void showIcons();
    void showHotkeys();
    void showDock();

    ViewContext _context;
    SettingRow *_icons = nullptr;
    SettingRow *_cover = nullptr;
    QPushButton *_coverButton = nullptr;
    SettingRow *_dock = nullptr;
    QPushButton *_dockButton = nullptr;
};

} // namespace velbrix
