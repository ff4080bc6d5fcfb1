#include "views/wallpaper/WallpaperPage.h"

#include "views/wallpaper/DesktopTidyCard.h"
#include "views/wallpaper/WallpaperDisplaysCard.h"
#include "views/wallpaper/WallpaperFolderCard.h"
#include "views/wallpaper/WallpaperPlaybackCard.h"
#include "views/wallpaper/WallpaperPreviewCard.h"

using namespace Qt::StringLiterals;

namespace velbrix {

WallpaperPage::WallpaperPage(const ViewContext &context, QWidget *parent)
    : Page(u"wallpaperPage"_s, u"动态壁纸"_s, u"让一段视频在桌面图标后面循环播放，每块屏幕可以各放各的。"_s,
           parent)
{
    add(new WallpaperPreviewCard(context));
    add(u"显示器"_s, new WallpaperDisplaysCard(context));
    add(u"壁纸文件夹"_s, new WallpaperFolderCard(context));
    add(u"播放"_s, new WallpaperPlaybackCard(context));
    add(u"桌面整理"_s, new DesktopTidyCard(context));
}

} // namespace velbrix
