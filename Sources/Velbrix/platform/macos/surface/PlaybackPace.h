#pragma once

#include <QtGlobal>

#include <chrono>

namespace velbrix {

// One tick for each interval of playing, out of a player's callbacks, which
// also come at every start, jump and repetition.
class PlayTicks {
public:
    explicit PlayTicks(std::chrono::milliseconds interval) : _interval(interval) {}

    // The times are any clock's that never runs backwards.
    void begin(std::chrono::milliseconds now);
    void end(std::chrono::milliseconds now);
    // Whether this callback is a tick; the next interval begins with it.
    bool isTick(std::chrono::milliseconds now);

private:
    std::chrono::milliseconds _interval;
    std::chrono::milliseconds _played{0}; // before the present stretch
    std::chrono::milliseconds _begun{0};
    bool _isPlaying = false;
};

// Makes a number that grows while a position moves, however it moves: the
// position of a repeated video falls back, and the count of its repetitions
// may lag behind.
class PlaybackProgress {
public:
    qint64 at(qint64 repetitions, double seconds);

private:
    qint64 _moves = 0;
    qint64 _repetitions = 0;
    double _seconds = 0;
};

} // namespace velbrix
