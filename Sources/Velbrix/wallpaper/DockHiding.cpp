#include "wallpaper/DockHiding.h"

#include "wallpaper/WallpaperPreferences.h"

#include <QPointer>

using namespace Qt::StringLiterals;

namespace velbrix {

DockHiding::DockHiding(DockPreference &dock, WallpaperPreferences &preferences, QObject *parent)
    : QObject(parent), _dock(dock), _preferences(preferences)
{
}

void DockHiding::toggleDockAutoHide()
{
    if (!isWorking())
        change(!_preferences.isDockAutoHidden());
}

void DockHiding::putBack()
{
    if (isWorking())
        return;
    if (_preferences.isDockAutoHidden() || _preferences.originalSystemDockAutohideState())
        change(false);
}

QCoro::Task<> DockHiding::change(bool hides)
{
    const QPointer self(this);
    _isWorking = true;
    _problem = QString();
    const auto known = _preferences.originalSystemDockAutohideState();
    const auto original = known ? Result<bool>(*known) : co_await _dock.autoHide();
    if (!self)
        co_return;
    if (!original) {
        finish(original.error().message);
        co_return;
    }
    // Known before the first change: a crash in between loses nothing.
    if (hides)
        _preferences.setDockState(false, *original);
    const auto written = co_await _dock.setAutoHide(hides || *original);
    if (!self)
        co_return;
    if (written)
        _preferences.setDockState(hides, hides ? std::optional(*original) : std::nullopt);
    else if (hides)
        _preferences.setDockState(false, known);
    finish(written ? QString() : written.error().message);
    if (written)
        Q_EMIT toggled();
}

void DockHiding::finish(const QString &problem)
{
    _problem = problem;
    _isWorking = false;
}

} // namespace velbrix
