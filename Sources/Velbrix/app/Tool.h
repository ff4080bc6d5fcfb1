#pragma once

#include "app/Command.h"
#include "app/HotkeyActions.h"
#include "app/PrivacyConsent.h"
#include "app/TrayMenu.h"

#include <QList>
#include <QString>

#include <functional>

namespace velbrix {

class AppServices;
class Banners;
class Job;
class TrayController;

// What a tool says of itself in the general status.
struct ToolStatus {
    QString line;
    QJsonObject data; // put beside that of the others
};

struct ToolHotkey {
    HotkeyAction action = HotkeyAction::none;
    std::function<void(AppServices &)> act;
};

// All that the program knows of a tool: what of it stands in the sidebar, the
// tray and the status, what it can be told to do, what it does in the
// background. Made without services, as the command line's client has none;
// each function gets them when it is called. One that is left out says that
// the tool has nothing of the kind.
struct Tool {
    QString identifier; // of its tab, for the command line and the list of pages
    QString title;
    QString symbol; // SF Symbol name
    QString group;  // heading above it; empty for the foot of the sidebar

    QList<Command> commands = {};
    QList<FeaturePrivacyNotice> notices = {}; // of the consents that it asks for
    QList<ToolHotkey> hotkeys = {};
    // What it does in the background.
    std::function<Job *(AppServices &)> job = {};

    std::function<TraySection(AppServices &)> tray = {};
    // Has the tray refreshed whenever that changes; connections end with the tray.
    std::function<void(AppServices &, TrayController &)> followTray = {};
    std::function<ToolStatus(AppServices &)> status = {};
    // From the start of the program on; connections end with the banners.
    std::function<void(AppServices &, Banners &)> news = {};

    // Once at the start, in the one copy that runs.
    std::function<void(AppServices &)> launch = {};
    // At the end, beside the cancelling of its jobs: starts nothing any more.
    // Only what can be done without waiting.
    std::function<void(AppServices &)> shutDown = {};
};

} // namespace velbrix
