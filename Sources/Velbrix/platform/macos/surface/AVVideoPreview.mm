#include "platform/macos/surface/AVVideoPreview.h"

#include "platform/macos/desktop/PictureBridge.h"
#include "platform/macos/media/TrackGeometry.h"
#include "platform/macos/media/VideoGeometry.h"

#include <utility>

namespace velbrix {
namespace {

constexpr int32_t picturesPerSecond = 30;

AVAssetTrack *videoTrack(AVPlayerItem *item)
{
    for (AVPlayerItemTrack *track in item.tracks) {
        if ([track.assetTrack.mediaType isEqualToString:AVMediaTypeVideo])
            return track.assetTrack;
    }
    return nil;
}

AVPlayerItemVideoOutput *outputFor(AVAssetTrack *track, QSize bound)
{
    const QSize size = decodedSize(naturalSize(track), turn(track), bound);
    return [[AVPlayerItemVideoOutput alloc] initWithPixelBufferAttributes:@{
        (__bridge NSString *)kCVPixelBufferPixelFormatTypeKey : @(kCVPixelFormatType_32BGRA),
        (__bridge NSString *)kCVPixelBufferWidthKey : @(size.width()),
        (__bridge NSString *)kCVPixelBufferHeightKey : @(size.height()),
    }];
}

} // namespace

struct AVVideoPreview::Pictures {
    QSize bound;
    std::function<void(QImage)> frame;
    QTransform turned;

    void fetch(AVPlayerItem *item, CMTime time);
    AVPlayerItemVideoOutput *outputOf(AVPlayerItem *item);
};

// Each repetition plays another copy of the item, and no copy inherits the
// output.
AVPlayerItemVideoOutput *AVVideoPreview::Pictures::outputOf(AVPlayerItem *item)
{
    for (AVPlayerItemOutput *output in item.outputs) {
        if ([output isKindOfClass:[AVPlayerItemVideoOutput class]])
            return static_cast<AVPlayerItemVideoOutput *>(output);
    }
    AVAssetTrack *track = videoTrack(item);
    if (!track)
        return nil;
    turned = turn(track);
    AVPlayerItemVideoOutput *output = outputFor(track, bound);
    [item addOutput:output];
    return output;
}

void AVVideoPreview::Pictures::fetch(AVPlayerItem *item, CMTime time)
{
    AVPlayerItemVideoOutput *output = outputOf(item);
    if (![output hasNewPixelBufferForItemTime:time])
        return;
    const CVPixelBufferRef buffer = [output copyPixelBufferForItemTime:time itemTimeForDisplay:nullptr];
    const QImage picture = toQImage(buffer);
    CVPixelBufferRelease(buffer);
    if (picture.isNull() || !frame)
        return;
    // A copy, because the call may destroy the preview.
    const auto call = frame;
    call(picture.transformed(turned));
}

AVVideoPreview::AVVideoPreview(const QString &path, QSize bound, PreviewEvents events)
    : _player(events.failed ? events.failed : [](const Failure &) {}),
      _pictures(std::make_shared<Pictures>(Pictures{bound, events.frame, {}}))
{
    AVQueuePlayer *player = _player.player();
    player.muted = YES;
    __weak AVQueuePlayer *observed = player;
    const std::weak_ptr<Pictures> pictures = _pictures;
    _timeObserver = [player addPeriodicTimeObserverForInterval:CMTimeMake(1, picturesPerSecond)
                                                         queue:dispatch_get_main_queue()
                                                    usingBlock:^(CMTime time) {
                                                        AVPlayerItem *item = observed.currentItem;
                                                        const auto alive = pictures.lock();
                                                        if (alive && item)
                                                            alive->fetch(item, time);
                                                    }];
    _player.load(path);
}

AVVideoPreview::~AVVideoPreview()
{
    // A player must not end before its observers.
    [_player.player() removeTimeObserver:_timeObserver];
}

void AVVideoPreview::play()
{
    _player.play(1);
}

void AVVideoPreview::pause()
{
    _player.pause();
}

} // namespace velbrix
