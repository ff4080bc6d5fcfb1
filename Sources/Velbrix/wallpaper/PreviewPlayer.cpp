#include "wallpaper/PreviewPlayer.h"

#include <utility>

using namespace Qt::StringLiterals;

namespace velbrix {

PreviewPlayer::PreviewPlayer(DesktopSurfaces &surfaces, QObject *parent)
    : QObject(parent), _surfaces(surfaces)
{
}

void PreviewPlayer::load(const QString &path)
{
    if (_player && _itemURL == path)
        return;
    stop();
    _itemURL = path;
    PreviewEvents events;
    events.frame = [this](QImage frame) {
        _frame = std::move(frame);
        Q_EMIT frameChanged();
    };
    events.failed = [this](const Failure &reason) { fail(reason.message); };
    auto made = _surfaces.makePreview(path, bound, std::move(events));
    if (made)
        _player = std::move(*made);
    else
        _problem = made.error().message;
}

void PreviewPlayer::play(const QString &path)
{
    load(path);
    if (!_player)
        return;
    _player->play();
    _isPreviewPlaying = true;
}

// Whoever presses again wants it tried again.
void PreviewPlayer::fail(QString problem)
{
    _player.reset();
    _isPreviewPlaying = false;
    _problem = problem;
}

void PreviewPlayer::pause()
{
    if (_player)
        _player->pause();
    _isPreviewPlaying = false;
}

void PreviewPlayer::stop()
{
    _player.reset();
    _itemURL.reset();
    _problem = QString();
    _isPreviewPlaying = false;
    if (std::exchange(_frame, QImage()).isNull())
        return;
    Q_EMIT frameChanged();
}

} // namespace velbrix
