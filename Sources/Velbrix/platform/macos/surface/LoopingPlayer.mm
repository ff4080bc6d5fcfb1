#include "platform/macos/surface/LoopingPlayer.h"

#include "platform/macos/media/AssetBridge.h"
#include "platform/macos/system/FoundationBridge.h"

#include <algorithm>
#include <utility>

namespace velbrix {
namespace {

constexpr NSTimeInterval forwardBuffer = 8; // seconds

AVPlayerItem *itemOf(AVAsset *asset)
{
    AVPlayerItem *item = [[AVPlayerItem alloc] initWithAsset:asset];
    item.preferredForwardBufferDuration = forwardBuffer;
    item.canUseNetworkResourcesForLiveStreamingWhilePaused = NO;
    item.preferredMaximumResolution = CGSizeMake(2560, 1440);
    return item;
}

} // namespace

LoopingPlayer::LoopingPlayer(std::function<void(Failure)> failed)
    : _failed(std::move(failed)), _player([AVQueuePlayer new])
{
    _player.automaticallyWaitsToMinimizeStalling = NO;
    _player.volume = 0;
}

LoopingPlayer::~LoopingPlayer()
{
    unload();
}

void LoopingPlayer::load(const QString &path)
{
    unload();
    _hasFailed = false;
    _asset = assetAt(path);
    // The item is a template; what plays are copies of it.
    _looper = [AVPlayerLooper playerLooperWithPlayer:_player templateItem:itemOf(_asset)];
    watch();
    if (_rate)
        play(*_rate);
}

void LoopingPlayer::unload()
{
    _endWatch = nil;
    _bufferWatch = nil;
    _itemWatch = nil;
    _looperWatch = nil;
    // Otherwise the rest of the old file would be played first.
    [_looper disableLooping];
    _looper = nil;
    [_player removeAllItems];
    _asset = nil;
}

void LoopingPlayer::play(double rate)
{
    _rate = rate;
    _player.automaticallyWaitsToMinimizeStalling = NO;
    AVPlayerItem *item = _player.currentItem;
    item.preferredForwardBufferDuration = std::max(item.preferredForwardBufferDuration, forwardBuffer);
    [_player playImmediatelyAtRate:static_cast<float>(rate)];
}

void LoopingPlayer::pause()
{
    _rate.reset();
    [_player pause];
}

void LoopingPlayer::watch()
{
    _looperWatch = [[VBKeyValueWatch alloc] initWithObject:_looper
                                                   keyPath:@"status"
                                                   changed:[this] { looperChanged(); }];
    _itemWatch = [[VBKeyValueWatch alloc] initWithObject:_player
                                                 keyPath:@"currentItem.status"
                                                 changed:[this] { itemChanged(); }];
    _bufferWatch = [[VBKeyValueWatch alloc] initWithObject:_player
                                                   keyPath:@"currentItem.playbackLikelyToKeepUp"
                                                   changed:[this] { itemChanged(); }];
    [_looperWatch check];
    [_itemWatch check];
    _endWatch = [[VBNotificationWatch alloc]
        initWithCenter:NSNotificationCenter.defaultCenter
                  name:AVPlayerItemFailedToPlayToEndTimeNotification
                posted:[this](NSNotification *notification) { endMissed(notification); }];
}

void LoopingPlayer::looperChanged()
{
    if (_looper.status == AVPlayerLooperStatusFailed)
        fail(_looper.error);
}

void LoopingPlayer::itemChanged()
{
    AVPlayerItem *item = _player.currentItem;
    if (item.status == AVPlayerItemStatusFailed)
        fail(item.error);
    // It stops where there is nothing to play yet: at the beginning, or where
    // the next copy is late.
    else if (item.status == AVPlayerItemStatusReadyToPlay && _rate && !(_player.rate > 0))
        play(*_rate);
}

void LoopingPlayer::endMissed(NSNotification *notification)
{
    if ([_looper.loopingPlayerItems containsObject:notification.object])
        fail(notification.userInfo[AVPlayerItemFailedToPlayToEndTimeErrorKey]);
}

void LoopingPlayer::fail(NSError *error)
{
    if (std::exchange(_hasFailed, true))
        return;
    unload();
    // A copy, because the call may destroy the player.
    const auto failed = _failed;
    failed(toFailure(error));
}

} // namespace velbrix
