#include "app/AppTab.h"

#include <algorithm>

using namespace Qt::StringLiterals;

namespace velbrix {

const QList<AppTabInfo> &appTabs()
{
    static const QList<AppTabInfo> tabs = {
        {AppTab::wallpaper, u"wallpaper"_s, u"动态壁纸"_s, u"photo.on.rectangle"_s, u"桌面"_s},
        {AppTab::recorder, u"recorder"_s, u"屏幕录制"_s, u"record.circle"_s, u"录制"_s},
        {AppTab::systemClean, u"clean"_s, u"系统清理"_s, u"sparkles"_s, u"维护"_s},
        {AppTab::uninstaller, u"apps"_s, u"应用卸载"_s, u"xmark.bin"_s, u"维护"_s},
        {AppTab::fileBackup, u"backup"_s, u"文件备份"_s, u"externaldrive.badge.timemachine"_s, u"维护"_s},
        {AppTab::settings, u"settings"_s, u"设置"_s, u"gearshape"_s, {}},
    };
    return tabs;
}

const AppTabInfo &appTabInfo(AppTab tab)
{
    return *std::ranges::find(appTabs(), tab, &AppTabInfo::tab);
}

std::optional<AppTab> appTabFromIdentifier(const QString &identifier)
{
    const auto found = std::ranges::find(appTabs(), identifier, &AppTabInfo::identifier);
    return found == appTabs().end() ? std::nullopt : std::optional(found->tab);
}

} // namespace velbrix
