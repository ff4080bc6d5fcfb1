#include "views/settings/LoginSection.h"

#include "app/AppServices.h"
#include "platform/Platform.h"
#include "views/components/SettingRow.h"
#include "views/components/Switch.h"

using namespace Qt::StringLiterals;

namespace velbrix {

LoginSection::LoginSection(const ViewContext &context, QWidget *parent) : Card(parent)
{
    LoginItem &login = *context.services.platform.loginItem;
    auto *atLogin = new Switch(context.theme, u"loginItem"_s);
    auto *row = new SettingRow(u"登录时启动"_s, u"登录后在托盘中运行，不打开窗口"_s, atLogin);
    row->setObjectName(u"loginRow"_s);
    atLogin->setOn(login.isEnabled());
    addRow(row);
    connect(atLogin, &Switch::wanted, this, [&login, atLogin, row](bool on) {
        const auto changed = login.setEnabled(on);
        row->setNote(changed ? QString() : u"没有改成："_s + changed.error().message, u"bad"_s);
        atLogin->setOn(login.isEnabled());
    });
}

} // namespace velbrix
