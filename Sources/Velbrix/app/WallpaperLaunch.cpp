#include "app/WallpaperLaunch.h"

#include "app/AppServices.h"
#include "foundation/Log.h"

#include <utility>

using namespace Qt::StringLiterals;
using namespace std::chrono_literals;

namespace velbrix {
namespace {

constexpr auto restoreDelay = 1500ms;

} // namespace

WallpaperLaunch::WallpaperLaunch(AppServices &services, std::function<void()> restored)
    : _services(services), _restored(std::move(restored))
{
}

void WallpaperLaunch::recoverAfterCrash()
{
    _services.wallpaper.recoverAfterCrash();
}

void WallpaperLaunch::scheduleRestore()
{
    _alarm = _services.clock.after(restoreDelay, [this] { restoreWallpaper(u"launch"_s); });
}

void WallpaperLaunch::restoreWallpaper(const QString &reason)
{
    if (!_services.privacy.hasAcceptedFirstLaunchNotice()) {
        log::line(u"Velbrix"_s, u"skip auto wallpaper (%1): first-launch not accepted"_s.arg(reason));
        return;
    }
    WallpaperController &wallpaper = _services.wallpaper;
    log::line(u"Velbrix"_s, u"auto wallpaper restore (%1) autoPlay=%2"_s.arg(
                                reason, log::text(wallpaper.preferences().autoPlay())));
    wallpaper.autoRestoreOnLaunch();
    _restored();
}

} // namespace velbrix
