#include "app/TrayMenu.h"

#include "foundation/Log.h"

#include <QStringList>

using namespace Qt::StringLiterals;

namespace velbrix {
QString TrayState::signature() const
{
    return QStringList{wallpaperTitle, log::text(canToggleWallpaper), log::text(isWallpaperShowing),
                       log::text(isRecording), recordTitle}
        .join(u'|');
}

QList<TrayMenuItem> trayMenu(const TrayState &state)
{
    const TrayMenuItem separator;
    const auto header = [](TrayItemId id, const QString &title) {
        return TrayMenuItem{id, title, {}, true, false};
    };
    return {
        {TrayItemId::open, u"打开 Velbrix"_s, u"⌘O"_s},
        separator,
        header(TrayItemId::wallpaperHeader, u"视频壁纸"_s),
        {TrayItemId::wallpaperPlay, state.wallpaperTitle, u"⌘⇧P"_s, false, state.canToggleWallpaper},
        {TrayItemId::wallpaperStop, u"停止壁纸"_s, {}, false, state.isWallpaperShowing},
        separator,
        header(TrayItemId::recordHeader, u"屏幕录制"_s),
        {TrayItemId::recordToggle, state.recordTitle, u"⌘⇧R"_s},
        {TrayItemId::recordPanel, u"打开录制面板"_s, {}},
        separator,
        {TrayItemId::privacy, u"隐私与声明…"_s, {}},
        {TrayItemId::remoteCheck, u"检查更新与公告…"_s, {}},
        separator,
        {TrayItemId::quit, u"退出"_s, u"⌘Q"_s},
    };
}

} // namespace velbrix
