#include "views/settings/HotkeySection.h"

#include "app/AppServices.h"
#include "views/components/ShortcutField.h"

namespace velbrix {

HotkeySection::HotkeySection(const ViewContext &context, QWidget *parent) : Card(parent)
{
    HotkeyManager &hotkeys = context.services.hotkeys;
    for (const HotkeyActionInfo &info : hotkeyActions()) {
        if (hotkeys.isAvailable(info.action))
            addRow(new ShortcutField(context.theme, hotkeys, info.action));
    }
}

} // namespace velbrix
