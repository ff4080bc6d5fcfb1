#pragma once

#include "app/AppDelegate.h"
#include "app/UserInterface.h"
#include "support/WallpaperRig.h"

namespace velbrix::test {

// Windows and a tray icon that only remember what was asked.
class FakeUserInterface final : public UserInterface {
public:
    QStringList calls;
    bool visible = false;
    std::optional<QRect> minimizedAt;
    QList<TrayMenuItem> menu;
    bool trayShowsRecording = false;
    std::function<void()> clicked;
    std::function<void(const QString &id)> chosen;

    void showMainWindow(const std::optional<QRect> &) override
    {
        calls << u"show"_s;
        visible = true;
    }
    void hideMainWindow() override
    {
        calls << u"hide"_s;
        visible = false;
    }
    void minimizeMainWindow(const std::optional<QRect> &frame) override
    {
        calls << u"minimize"_s;
        minimizedAt = frame;
    }
    bool isMainWindowVisible() const override { return visible; }
    std::optional<QRect> mainWindowFrame() const override { return QRect(10, 20, 1040, 700); }
    void createTray(const QList<TrayMenuItem> &items, std::function<void()> onClick,
                    std::function<void(const QString &id)> onChoice) override
    {
        calls << u"createTray"_s;
        menu = items;
        clicked = std::move(onClick);
        chosen = std::move(onChoice);
    }
    void updateTray(const QList<TrayMenuItem> &items, bool isRecording) override
    {
        calls << u"updateTray"_s;
        menu = items;
        trayShowsRecording = isRecording;
    }
    void removeTray() override { calls << u"removeTray"_s; }
    void showPrivacyStatement() override { calls << u"statement"_s; }
};

// The whole program but its windows, with every consent it needs to record and to play unless what
// is stored says otherwise. Change the host, then call launch().
struct ProgramRig : WallpaperRig {
    explicit ProgramRig(const QJsonObject &stored = {})
    {
        qputenv("XDG_RUNTIME_DIR", runtime.path().toUtf8());
        QVariantMap all{{u"Velbrix_Privacy_firstLaunchAccepted"_s, true},
                        {u"Velbrix_Privacy_consent_screenRecording"_s, true},
                        {u"Velbrix_Privacy_consent_videoWallpaper"_s, true},
                        {u"Velbrix_ScreenRecord_outputDir"_s, files.path()}};
        all.insert(stored.toVariantMap());
        host.settings.stored = QJsonObject::fromVariantMap(all);
        delegate = std::make_unique<AppDelegate>(make(), ui);
    }
    void launch(bool background = true)
    {
        delegate->applicationDidFinishLaunching(background);
        settle();
    }
    // In the tray's menu.
    void choose(const QString &item)
    {
        ui.chosen(item);
        settle();
    }
    // With the control and option keys.
    void press(quint32 keyCode)
    {
        host.hotkeys.press({keyCode, HotkeyChord::controlKey | HotkeyChord::optionKey});
        settle();
    }
    QStringList banners() const
    {
        settle();
        QStringList found;
        for (const Toast &toast : services->toasts.visible())
            found << toast.title + u"|"_s + toast.body;
        return found;
    }
    // Whether the program ends by then, and not earlier.
    bool endsAfter(std::chrono::milliseconds time)
    {
        const QSignalSpy terminated(delegate.get(), &AppDelegate::terminate);
        delegate->quitApp();
        clock.advance(time - 1ms);
        settle();
        const bool isEarly = !terminated.isEmpty();
        clock.advance(1ms);
        settle();
        return !isEarly && terminated.count() == 1;
    }

    const QTemporaryDir runtime;
    FakeUserInterface ui;
    std::unique_ptr<AppDelegate> delegate;
};

} // namespace velbrix::test
