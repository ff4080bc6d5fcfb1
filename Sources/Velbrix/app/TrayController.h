#pragma once

#include "app/TrayMenu.h"
#include "foundation/Clock.h"
#include "foundation/Observation.h"

#include <QObject>
#include <QString>

#include <functional>
#include <memory>

namespace velbrix {

class AppServices;
class Shell;

// Keeps the status item's menu and image in step with the program's state.
// Where nothing shows tray icons it waits for something that does.
class TrayController final : public QObject {
    Q_OBJECT

public:
    // `chosen` gets the entries that the user picks, after the menu has closed.
    TrayController(AppServices &services, Shell &shell, std::function<void(TrayItemId)> chosen,
                   QObject *parent = nullptr);
    ~TrayController() override;

    void createStatusItem();
    // Reads the state and rewrites the menu if it differs, or in any case.
    void refresh(bool forced);
    // The state is read every 5 s while the program is active, else every 20 s.
    void scheduleMenuRefresh(bool isAppActive);
    void remove();

    const QString &lastTraySignature() const { return _lastTraySignature; }

private:
    void followWallpaper();
    void trayHostChanged();
    TrayState state() const;

    AppServices &_services;
    Shell &_shell;
    const std::function<void(TrayItemId)> _chosen;
    bool _hasStatusItem = false;
    QString _lastTraySignature;
    std::unique_ptr<Alarm> _menuRefreshTimer;
    Observation _trayHostChanges;
};

} // namespace velbrix
