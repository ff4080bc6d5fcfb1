#pragma once

#include "foundation/Result.h"
#include "platform/macos/system/SystemWatch.h"

#import <AVFoundation/AVFoundation.h>

#include <QString>

#include <functional>
#include <optional>

namespace velbrix {

// Objective-C++ only. Plays one file over and over, silent until its player
// gets a volume. Main thread.
class LoopingPlayer {
public:
    // The failure comes at most once for each load, never from inside a call.
    explicit LoopingPlayer(std::function<void(Failure)> failed);
    ~LoopingPlayer();
    LoopingPlayer(const LoopingPlayer &) = delete;
    LoopingPlayer &operator=(const LoopingPlayer &) = delete;

    // What plays or pauses goes on doing so with the new file.
    void load(const QString &path);
    void play(double rate);
    void pause();

    bool isPlaying() const { return _asset && _rate; }
    AVQueuePlayer *player() const { return _player; }
    AVAsset *asset() const { return _asset; } // nil without a file
    NSInteger repetitions() const { return _looper.loopCount; }

private:
    void unload();
    void watch();
    void looperChanged();
    void itemChanged();
    void endMissed(NSNotification *notification);
    void fail(NSError *error);

    std::function<void(Failure)> _failed;
    std::optional<double> _rate; // while it shall play
    bool _hasFailed = false;
    AVQueuePlayer *_player;
    AVAsset *_asset = nil;
    AVPlayerLooper *_looper = nil;
    VBKeyValueWatch *_looperWatch = nil;
    VBKeyValueWatch *_itemWatch = nil;
    VBKeyValueWatch *_bufferWatch = nil;
    VBNotificationWatch *_endWatch = nil;
};

} // namespace velbrix
