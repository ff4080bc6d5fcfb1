#pragma once

#include "foundation/Clock.h"

#include <QString>
#include <QStringList>

#include <memory>
#include <vector>

namespace velbrix {

class DesktopPicture;
class DesktopSession;
class PanelSettings;

// By what a desktop can be recognised in its session.
struct DesktopSigns {
    QString session;             // XDG_CURRENT_DESKTOP
    QString windowManager;       // as it calls itself; empty without one
    QString backdropClass;       // of the window behind all others; empty without one
    quint32 backdropProcess = 0; // whose window that is

    // For the user.
    QString name() const;
};

// What the picture of a desktop is asked and set with.
struct PictureRequest {
    Clock &clock;
    std::shared_ptr<const DesktopSession> session;
    QString profile;       // of the program that shows it, where it has such
    bool isRunning = true; // whether that program runs now
};

// One desktop: how it is recognised, and who keeps its picture, its panels and
// its lock. Its appearance is asked of the settings portal, which is the same
// for all.
struct Desktop {
    QString key; // of what is remembered of it

    // Parts of names, in any case: of the class of the window behind all
    // others; of a window manager that only this desktop has; of the session,
    // where several desktops share a manager.
    QStringList backdropClasses = {};
    QStringList managers = {};
    QStringList sessions = {};

    // Null: nobody keeps a picture but the window system.
    std::unique_ptr<DesktopPicture> (*makePicture)(const PictureRequest &) = nullptr;
    // Whether what it shows is also published as the window system's picture.
    bool publishesPicture = false;
    // The profile of the program whose window lies behind all others.
    QString (*readProfile)(quint32 process) = nullptr;

    // Null: no panels that hide. They are there while the service runs.
    std::unique_ptr<PanelSettings> (*makePanels)(Clock &clock) = nullptr;
    QString panelService = {};

    // The service and interface that tell of its screen saver; empty: none of its own.
    QString saverService = {};
    QString saverPath = {};
};

// All known ones, each before those that it could be mistaken for.
const std::vector<Desktop> &desktops();
// Null where none of them shows itself.
const Desktop *recognisedDesktop(const DesktopSigns &signs);

} // namespace velbrix
