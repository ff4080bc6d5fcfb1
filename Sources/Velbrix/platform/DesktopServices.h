#pragma once

#include "foundation/Observation.h"
#include "foundation/Result.h"

#include <QString>

#include <functional>

namespace velbrix {

// The program's place on the user's desktop and the desktop's small favours.
// Main thread.
class DesktopServices {
public:
    virtual ~DesktopServices() = default;

    // A program of the tray only, which has no tile in the Dock and is none of
    // the switcher's, and an ordinary one, as it must be while its window is open.
    virtual void setAccessoryPresence() = 0;
    virtual void resetPresence() = 0;
    // The program has ended all that it does: a system that waits for it may go on.
    virtual void allowSystemToEnd() = 0;
    // Brings this program before the others.
    virtual void activate() = 0;

    virtual void beep() = 0;
    // Shows the file selected in the file manager, or else its folder.
    virtual Result<void> revealInFolder(const QString &path) = 0;
    // Opens the file in the program that the user has chosen for its kind. What
    // that program makes of it is not known.
    virtual Result<void> openFile(const QString &path) = 0;

    // Whether something shows tray icons at this moment, and a call whenever
    // that changes.
    virtual bool hasTrayHost() const = 0;
    virtual Observation observeTrayHost(std::function<void()> changed) = 0;

    virtual bool prefersReducedMotion() const = 0;
    virtual bool prefersDarkTheme() const = 0;
    virtual Observation observeTheme(std::function<void()> changed) = 0;

    // Called after the whole program was hidden and is shown again; a host
    // without such hiding never calls.
    virtual Observation observeUnhide(std::function<void()> unhidden) = 0;

    // Called when the user opens the program again although it runs: from its
    // tile in the Dock, from the file manager. A host on which that starts a
    // second copy never calls.
    virtual Observation observeReopen(std::function<void()> reopened) = 0;
};

} // namespace velbrix
