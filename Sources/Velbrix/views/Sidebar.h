#pragma once

#include <QWidget>

class QAbstractButton;
class QButtonGroup;
class QVBoxLayout;

namespace velbrix {

class AppServices;
class Job;
class Theme;
struct Tool;

// The list of tools by group, with those of no group at the foot; a ring shows
// what a tool does in the background. ↑↓ move in it.
class Sidebar final : public QWidget {
public:
    Sidebar(const Theme &theme, AppServices &services, QWidget *parent = nullptr);

private:
    void add(const Tool &tool);
    QWidget *ring(const Tool &tool, Job &job);

    const Theme &_theme;
    AppServices &_services;
    QButtonGroup *_tabs;
    QVBoxLayout *_list;
};

} // namespace velbrix
