#pragma once

#include "app/TrayMenu.h"
#include "foundation/Clock.h"
#include "foundation/Observation.h"

#include <QObject>
#include <QString>

#include <memory>

namespace velbrix {

class AppServices;
class UserInterface;

// Keeps the status item's menu and image in step with the program's state.
// Where nothing shows tray icons it waits for something that does.
class TrayController final : public QObject {
    Q_OBJECT

public:
    TrayController(AppServices &services, UserInterface &ui, QObject *parent = nullptr);
    ~TrayController() override;

    void createStatusItem();
    // Reads the state and rewrites the menu if it differs, or in any case.
    void refresh(bool forced);
    // The state is read every 5 s while the program is active, else every 20 s.
    void scheduleMenuRefresh(bool isAppActive);
    void remove();

    const QString &lastTraySignature() const { return _lastTraySignature; }

private:
    void followTools();
    void trayHostChanged();
    QList<TrayMenuItem> menu();
    QString signature();
    bool isRecording() const;
    void choose(const QString &id);
    void checkRemoteConfig();

    AppServices &_services;
    UserInterface &_ui;
    bool _hasStatusItem = false;
    QString _lastTraySignature;
    std::unique_ptr<Alarm> _menuRefreshTimer;
    Observation _trayHostChanges;
};

} // namespace velbrix
