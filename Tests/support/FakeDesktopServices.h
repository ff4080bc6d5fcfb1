#pragma once

#include "platform/DesktopServices.h"

#include <QFileInfo>
#include <QStringList>

#include <optional>
#include <utility>

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
        const QString folder = QFileInfo(path).absolutePath();
        if (!QFileInfo(folder).isDir())
            return failure(QStringLiteral("文件夹不存在：") + folder);
        return {};
    }

    bool hasTrayHost() const override { return trayHost; }
    Observation observeTrayHost(std::function<void()> changed) override
    {
        return _trayObservers.add(std::move(changed));
    }

    bool prefersReducedMotion() const override { return reducedMotion; }
    bool prefersDarkTheme() const override { return darkTheme; }
    Observation observeTheme(std::function<void()> changed) override
    {
        return _themeObservers.add(std::move(changed));
    }

    Observation observeUnhide(std::function<void()> unhidden) override
    {
        return _unhideObservers.add(std::move(unhidden));
    }

    Observation observeReopen(std::function<void()> reopened) override
    {
        return _reopenObservers.add(std::move(reopened));
    }

    void setTrayHost(bool present)
    {
        trayHost = present;
        _trayObservers.notify();
    }
    void setDarkTheme(bool dark)
    {
        darkTheme = dark;
        _themeObservers.notify();
    }
    void unhide() { _unhideObservers.notify(); }
    // The user opens the running program again.
    void reopen() { _reopenObservers.notify(); }

private:
    ObserverList<void()> _trayObservers;
    ObserverList<void()> _themeObservers;
    ObserverList<void()> _unhideObservers;
    ObserverList<void()> _reopenObservers;
};

} // namespace velbrix::test
