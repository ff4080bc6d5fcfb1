#pragma once

#include "foundation/HotkeyChord.h"

#include <QList>
#include <QString>

namespace velbrix {

enum class HotkeyAction {
    none,
    recordToggle,
    hideDesktopIcons,
    hideDock,
    windowSwitcher,
    screenshot,
    clipboardHistory
};

struct HotkeyActionInfo {
    HotkeyAction action = HotkeyAction::none;
    QString name; // in the log and on the command line
    QString settingsKey;
    HotkeyChord defaultChord;
    quint32 id = 0; // of the registration; 0 for the watched screenshot key
    QString notification;
    QString label; // "录制快捷键"

    bool operator==(const HotkeyActionInfo &) const = default;
};

// The six actions in their fixed order, which is also the order of conflicts.
const QList<HotkeyActionInfo> &hotkeyActions();
const HotkeyActionInfo &hotkeyActionInfo(HotkeyAction action);

} // namespace velbrix
