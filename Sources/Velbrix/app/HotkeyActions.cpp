#include "app/HotkeyActions.h"

#include <algorithm>

using namespace Qt::StringLiterals;

namespace velbrix {

const QList<HotkeyActionInfo> &hotkeyActions()
{
    static constexpr quint32 controlOption = HotkeyChord::controlKey | HotkeyChord::optionKey;
    static const QList<HotkeyActionInfo> actions = {
        {HotkeyAction::recordToggle,
         u"recordToggle"_s,
         u"Velbrix_Hotkey_RecordToggle"_s,
         {29, controlOption},
         1,
         u"velBrixToggleRecordingHotkey"_s,
         u"录制快捷键"_s},
        {HotkeyAction::hideDesktopIcons,
         u"hideDesktopIcons"_s,
         u"Velbrix_Hotkey_HideDesktopIcons"_s,
         {2, controlOption},
         2,
         u"velBrixToggleHideDesktopIconsHotkey"_s,
         u"隐藏桌面快捷键"_s},
        {HotkeyAction::hideDock,
         u"hideDock"_s,
         u"Velbrix_Hotkey_HideDock"_s,
         {4, controlOption},
         3,
         u"velBrixToggleHideDockHotkey"_s,
         u"隐藏 Dock 快捷键"_s},
        {HotkeyAction::windowSwitcher,
         u"windowSwitcher"_s,
         u"Velbrix_Hotkey_WindowSwitcher"_s,
         {48, HotkeyChord::optionKey},
         4,
         u"velBrixWindowSwitcherHotkey"_s,
         u"窗口切换快捷键"_s},
        {HotkeyAction::screenshot,
         u"screenshot"_s,
         u"Velbrix_Hotkey_Screenshot"_s,
         {105, 0},
         0,
         u"velBrixScreenshotHotkey"_s,
         u"截图快捷键"_s},
        {HotkeyAction::clipboardHistory,
         u"clipboardHistory"_s,
         u"Velbrix_Hotkey_ClipboardHistory"_s,
         {9, controlOption},
         5,
         u"velBrixClipboardHistoryHotkey"_s,
         u"剪贴板历史快捷键"_s},
    };
    return actions;
}

const HotkeyActionInfo &hotkeyActionInfo(HotkeyAction action)
{
    return *std::ranges::find(hotkeyActions(), action, &HotkeyActionInfo::action);
}

} // namespace velbrix
