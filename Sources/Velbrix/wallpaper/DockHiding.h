#pragma once

#include "foundation/Published.h"
#include "platform/DockPreference.h"

#include <QCoroTask>
#include <QObject>

namespace velbrix {

class WallpaperPreferences;

// Hides the Dock by the system's own auto-hide and honours what the user had.
class DockHiding final : public QObject {
    Q_OBJECT
    VELB_PUBLISHED(DockHiding, bool, isWorking, false)
    // Why the last change did not happen, for the user; empty when it did.
    VELB_PUBLISHED(DockHiding, QString, problem)

public:
    DockHiding(DockPreference &dock, WallpaperPreferences &preferences, QObject *parent = nullptr);

    void toggleDockAutoHide();
    // The user's own value again, if this program has changed it, or is about to.
    void putBack();

Q_SIGNALS:
    void toggled();

private:
    QCoro::Task<> change(bool hides);
    void finish(const QString &problem);

    DockPreference &_dock;
    WallpaperPreferences &_preferences;
    bool _isPutBackNext = false;
};

} // namespace velbrix
