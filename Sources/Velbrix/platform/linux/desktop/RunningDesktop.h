#pragma once

#include <QString>

namespace velbrix {

// Who shows the picture behind everything in this session.
struct RunningDesktop {
    enum class Program { RootWindow, Xfce, Pcmanfm, Gnome, Cinnamon, Mate, Plasma };

    Program program = Program::RootWindow;
    QString profile; // of pcmanfm
    QString name;    // for the user

    // By the windows on the X server, not by what is installed. Any thread; a
    // connection of its own.
    static RunningDesktop find();
};

} // namespace velbrix
