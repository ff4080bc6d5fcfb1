#pragma once

#include <QString>

namespace velbrix {

// The facts that decide whether the X server shows this program the screen.
struct SessionFacts {
    bool isOnX11 = false;           // the program's own windows are there
    bool announcesXwayland = false; // the server names itself Xwayland
    QString sessionType;            // XDG_SESSION_TYPE
    QString waylandDisplay;         // WAYLAND_DISPLAY

    static SessionFacts ofThisSession();
};

// Why the screen cannot be captured, in words for the user; empty when it can.
// A server inside a Wayland session shows its programs black where the others
// are, and answers every question about the screen all the same.
QString screenObstacle(const SessionFacts &facts);

} // namespace velbrix
