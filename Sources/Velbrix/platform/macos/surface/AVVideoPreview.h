#pragma once

#include "platform/VideoSurface.h"
#include "platform/macos/surface/LoopingPlayer.h"

#include <QTransform>

namespace velbrix {

// Objective-C++ only. A player whose pictures are taken from its output in the
// size in which they are shown.
class AVVideoPreview final : public VideoPreview {
public:
    AVVideoPreview(const QString &path, QSize bound, PreviewEvents events);
    ~AVVideoPreview() override;

    void play() override;
    void pause() override;

private:
    struct Pictures;

    LoopingPlayer _player;
    std::shared_ptr<Pictures> _pictures;
    id _timeObserver = nil;
};

} // namespace velbrix
