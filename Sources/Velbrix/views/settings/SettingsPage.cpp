#include "views/settings/SettingsPage.h"

#include "views/settings/AboutSection.h"
#include "views/settings/HotkeySection.h"
#include "views/settings/LoginSection.h"
#include "views/settings/PermissionSection.h"
#include "views/settings/PrivacySection.h"

using namespace Qt::StringLiterals;

namespace velbrix {

SettingsPage::SettingsPage(const ViewContext &context, QWidget *parent)
    : Page(u"settingsPage"_s, u"设置"_s, u"快捷键、权限、启动与隐私。"_s, parent)
{
    add(u"快捷键"_s, new HotkeySection(context));
    add(u"系统权限"_s, new PermissionSection(context));
    add(u"启动"_s, new LoginSection(context));
    add(u"隐私"_s, new PrivacySection(context));
    add(u"关于"_s, new AboutSection(context));
}

} // namespace velbrix
