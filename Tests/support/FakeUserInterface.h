#pragma once

#include "app/UserInterface.h"

#include <QStringList>

namespace velbrix::test {

// Windows and a tray icon that only remember what was asked.
class FakeUserInterface final : public UserInterface {
public:
    QStringList calls;
    std::optional<QRect> frame;
    bool visible = false;
    QList<TrayMenuItem> menu;
    bool trayShowsRecording = false;
    std::function<void()> clicked;
    std::function<void(const QString &id)> chosen;

    void showMainWindow(const std::optional<QRect> &wanted) override
    {
        calls << QStringLiteral("show");
        visible = true;
        frame = wanted ? wanted : QRect(10, 20, 1040, 700);
    }
    void hideMainWindow() override
    {
        calls << QStringLiteral("hide");
        visible = false;
    }
    void minimizeMainWindow() override { calls << QStringLiteral("minimize"); }
    bool isMainWindowVisible() const override { return visible; }
    std::optional<QRect> mainWindowFrame() const override { return frame; }
    void createTray(const QList<TrayMenuItem> &items, std::function<void()> onClick,
                    std::function<void(const QString &id)> onChoice) override
    {
        calls << QStringLiteral("createTray");
        menu = items;
        clicked = std::move(onClick);
        chosen = std::move(onChoice);
    }
    void updateTray(const QList<TrayMenuItem> &items, bool isRecording) override
    {
        calls << QStringLiteral("updateTray");
        menu = items;
        trayShowsRecording = isRecording;
    }
    void removeTray() override { calls << QStringLiteral("removeTray"); }
    void showPrivacyStatement() override { calls << QStringLiteral("statement"); }
};

} // namespace velbrix::test
