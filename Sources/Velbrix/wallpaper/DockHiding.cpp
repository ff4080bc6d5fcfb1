#include "wallpaper/DockHiding.h"

#include "wallpaper/WallpaperPreferences.h"

#include <QPointer>

#include <utility>

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
    _isPutBackNext = isWorking();
    const bool isChanged =
        _preferences.isDockAutoHidden() || _preferences.originalSystemDockAutohideState().has_value();
    if (isChanged && !isWorking())
        change(false);
}

QCoro::Task<> DockHiding::change(bool hides)
{
    const QPointer self(this);
    _isWorking = true;
    _problem = QString();
    const auto known = _preferences.originalSystemDockAutohideState();
    // What it is while we hide it says nothing of the user's own.
    Result<bool> original = known.value_or(false);
    if (hides && !known)
        original = co_await _dock.autoHide();
    if (!self)
        co_return;
    if (!original) {
        finish(original.error().message);
        co_return;
    }
    // Known before the first change: a crash in between loses nothing. Nor does
    // a failure, after which some of the change may be in force.
    if (hides)
        _preferences.setDockState(false, *original);
    const auto written = co_await _dock.setAutoHide(hides || *original);
    if (!self)
        co_return;
    if (written) {
        _preferences.setDockState(hides, hides ? std::optional(*original) : std::nullopt);
        Q_EMIT toggled();
    }
    finish(written ? QString() : written.error().message);
}

void DockHiding::finish(const QString &problem)
{
    _problem = problem;
    const bool isHidden = _preferences.isDockAutoHidden() || _preferences.originalSystemDockAutohideState();
    if (std::exchange(_isPutBackNext, false) && isHidden)
        change(false);
    else
        _isWorking = false;
}

} // namespace velbrix
