#include "wallpaper/PreviewPlayer.h"

#include <utility>

using namespace Qt::StringLiterals;

namespace velbrix {

PreviewPlayer::PreviewPlayer(DesktopSurfaces &surfaces, QObject *parent)
    : QObject(parent), _surfaces(surfaces)
{
}

void PreviewPlayer::play(const QString &path)
{
    if (!_player || _itemURL != path) {
        stop();
        PreviewEvents events;
        events.frame = [this](QImage frame) {
            _frame = std::move(frame);
            Q_EMIT frameChanged();
        };
        events.failed = [this](const Failure &reason) {
            _problem = reason.message;
            _isPreviewPlaying = false;
        };
        auto made = _surfaces.makePreview(path, bound, std::move(events));
        _problem = made ? QString() : made.error().message;
        if (!made)
            return;
        _player = std::move(*made);
        _itemURL = path;
    }
    _player->play();
    _isPreviewPlaying = true;
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
