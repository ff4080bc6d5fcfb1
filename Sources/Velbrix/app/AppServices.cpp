#include "app/AppServices.h"

#include "platform/Platform.h"

#include <utility>

namespace velbrix {

AppServices::AppServices(Platform &host, Clock &time)
    : clock(time),
      platform(host),
      settings(std::move(host.settings), time),
      toasts(time),
      recorder({*host.screenCapture, *host.audioDevices, *host.movieFiles, *host.permissions}, settings,
               time),
      privacy(*host.permissions, *host.notifications, settings, time),
      hotkeys({*host.hotkeys, *host.keys, [&host] { host.desktop->beep(); }}, settings, notifications, time)
{
    recorder.setUp();
}

AppServices::~AppServices() = default;

} // namespace velbrix
