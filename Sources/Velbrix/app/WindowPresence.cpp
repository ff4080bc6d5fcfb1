#include "app/WindowPresence.h"

#include "app/AppServices.h"
#include "app/UserInterface.h"
#include "platform/Platform.h"

#include <QJsonArray>

using namespace Qt::StringLiterals;
using namespace std::chrono_literals;

namespace velbrix {
namespace {

constexpr auto trayGrace = 5s;
const QString frameKey = u"Velbrix_MainWindow_Frame"_s;

std::optional<QRect> storedFrame(const SettingsStore &settings)
{
    const QJsonArray numbers = settings.json(frameKey).value_or(QJsonValue()).toArray();
    if (numbers.size() != 4)
        return std::nullopt;
    const QRect frame(numbers[0].toInt(), numbers[1].toInt(), numbers[2].toInt(), numbers[3].toInt());
    return frame.width() > 0 && frame.height() > 0 ? std::optional(frame) : std::nullopt;
}

} // namespace

WindowPresence::WindowPresence(AppServices &services, UserInterface &ui)
    : _services(services),
      _ui(ui),
      _savedFrame(storedFrame(services.settings)),
      _trayHost(services.platform.desktop->observeTrayHost([this] { stayInReach(); }))
{
}

WindowPresence::~WindowPresence() = default;

void WindowPresence::show()
{
    _services.platform.desktop->resetPresence();
    _ui.showMainWindow(_savedFrame);
    _services.platform.desktop->activate();
    _services.setInBackground(false);
}

void WindowPresence::startHidden()
{
    _services.setInBackground(true);
    // Panels start late; where none comes the window must be within reach.
    _trayGrace = _services.clock.after(trayGrace, [this] { stayInReach(); });
}

void WindowPresence::close()
{
    keepFrame();
    _services.setInBackground(true);
    if (_services.platform.desktop->hasTrayHost()) {
        _ui.hideMainWindow();
        _services.platform.desktop->setAccessoryPresence();
    } else {
        stayInReach();
    }
}

void WindowPresence::noteRestored()
{
    _services.setInBackground(false);
}

void WindowPresence::end()
{
    _trayGrace.reset();
    _trayHost.reset();
    keepFrame();
    _ui.hideMainWindow();
}

// Without a tray nobody could bring a hidden window back.
void WindowPresence::stayInReach()
{
    if (_services.isInBackground() && !_services.platform.desktop->hasTrayHost())
        _ui.minimizeMainWindow(_savedFrame);
}

void WindowPresence::keepFrame()
{
    const auto frame = _ui.mainWindowFrame();
    _savedFrame = frame;
    if (frame)
        _services.settings.set(frameKey, QJsonArray{frame->x(), frame->y(), frame->width(), frame->height()});
}

} // namespace velbrix
