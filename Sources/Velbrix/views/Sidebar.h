#pragma once

#include "app/AppTab.h"

#include <QWidget>

class QAbstractButton;
class QButtonGroup;
class QVBoxLayout;

namespace velbrix {

class AppRouter;
class TabActivity;
class Theme;

// The list of tabs by group, with the settings at the foot. ↑↓ move in it.
class Sidebar final : public QWidget {
public:
    Sidebar(const Theme &theme, AppRouter &router, const TabActivity &activity, QWidget *parent = nullptr);

private:
    void add(const AppTabInfo &tab);
    QWidget *ring(const AppTabInfo &tab);

    const Theme &_theme;
    const TabActivity &_activity;
    QButtonGroup *_tabs;
    QVBoxLayout *_list;
};

} // namespace velbrix
