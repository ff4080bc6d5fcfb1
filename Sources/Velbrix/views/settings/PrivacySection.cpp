#include "views/settings/PrivacySection.h"

#include "app/AppServices.h"
#include "views/Follow.h"
#include "views/components/Parts.h"
#include "views/components/SettingRow.h"

#include <QPushButton>

using namespace Qt::StringLiterals;

namespace velbrix {

PrivacySection::PrivacySection(const ViewContext &context, QWidget *parent) : Card(parent)
{
    QPushButton *const show = makeButton(context.theme, {u"reviewStatement"_s, u"查看声明"_s, {}, {}});
    auto *row = new SettingRow(u"隐私与使用声明"_s, {}, show);
    row->setObjectName(u"privacyRow"_s);
    addRow(row);
    connect(show, &QPushButton::clicked, &context.services.router, &AppRouter::openStatement);
    const PrivacyManager &privacy = context.services.privacy;
    follow(privacy, &PrivacyManager::hasAcceptedFirstLaunchNoticeChanged, this, [row, &privacy] {
        row->setDescription(privacy.hasAcceptedFirstLaunchNotice()
                                ? u"你已同意首启使用声明。可随时在托盘菜单再次查看。"_s
                                : u"尚未完成首启声明确认。"_s);
    });
}

} // namespace velbrix
