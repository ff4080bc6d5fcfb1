#pragma once

#include "foundation/Observation.h"

#include <QObject>
#include <QString>

namespace velbrix {

class AppServices;
class Shell;

// The news of the program's parts that become banners.
class Banners final : public QObject {
    Q_OBJECT

public:
    Banners(AppServices &services, Shell &shell, QObject *parent = nullptr);

    void show(const QString &title, const QString &body, const QString &icon);
    // What the user should know when the program has started.
    void tellOfStart();
    // From now on.
    void follow();
    void unfollow();
    // The hot key's answer while the feature is off.
    void tellIconsStay();

private:
    void followRecorder();
    void followWallpaper();
    // What the main window tells itself while it is in sight.
    void showBehindWindow(const QString &title, const QString &body);

    AppServices &_services;
    Shell &_shell;
    Observation _settingsFailures;
};

} // namespace velbrix
