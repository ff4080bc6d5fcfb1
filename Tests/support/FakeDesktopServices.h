#pragma once

#include "platform/DesktopServices.h"

#include <QStringList>

#include <optional>
#include <utility>
#include <vector>

namespace velbrix::test {

class FakeDesktopServices final : public DesktopServices {
public:
    bool trayHost = true;
    bool reducedMotion = false;
    bool darkTheme = false;
    std::optional<QString> revealFailure;
    QStringList calls; // "accessory", "presence", "activate", "beep", "reveal …"

    void setAccessoryPresence() override { calls.append(QStringLiteral("accessory")); }
    void resetPresence() override { calls.append(QStringLiteral("presence")); }
    void activate() override { calls.append(QStringLiteral("activate")); }
    void beep() override { calls.append(QStringLiteral("beep")); }
    Result<void> revealInFolder(const QString &path) override
    {
        calls.append(QStringLiteral("reveal ") + path);
        if (revealFailure)
            return failure(*revealFailure);
        return {};
    }

    bool hasTrayHost() const override { return trayHost; }
    void observeTrayHost(std::function<void()> changed) override
    {
        _trayObservers.push_back(std::move(changed));
    }

    bool prefersReducedMotion() const override { return reducedMotion; }
    bool prefersDarkTheme() const override { return darkTheme; }
    void observeTheme(std::function<void()> changed) override
    {
        _themeObservers.push_back(std::move(changed));
    }

    void observeUnhide(std::function<void()> unhidden) override
    {
        _unhideObservers.push_back(std::move(unhidden));
    }

    void setTrayHost(bool present)
    {
        trayHost = present;
        for (const auto &changed : _trayObservers)
            changed();
    }
    void setDarkTheme(bool dark)
    {
        darkTheme = dark;
        for (const auto &changed : _themeObservers)
            changed();
    }
    void unhide()
    {
        for (const auto &unhidden : _unhideObservers)
            unhidden();
    }

private:
    std::vector<std::function<void()>> _trayObservers;
    std::vector<std::function<void()>> _themeObservers;
    std::vector<std::function<void()>> _unhideObservers;
};

} // namespace velbrix::test
