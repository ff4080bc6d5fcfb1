#pragma once

#include <cstddef>
#include <cstdint>
#include <span>
#include <vector>

namespace velbrix {

// Puts sound where its time stamps say, as one gapless stream that begins with
// the movie: silence where none came, nothing twice. Interleaved floats. Pure.
//
// The first stamps of a source are off by up to 200 ms and slide towards the
// truth, so its beginning is held back until they agree. From then on sound
// follows on sound; a difference to the stamps on which several agree is a gap to
// fill or an overlap to drop, a small one the sound card's own idea of a second,
// corrected sample by sample.
class SoundTimeline {
public:
    // Fragments of a beginning that are held back: at least, and for stamps that never agree.
    static constexpr std::size_t settlingFragments = 25;
    static constexpr std::size_t mostSettlingFragments = 75;

    SoundTimeline(int sampleRate, int channels);

    // The time of the first sample of the movie.
    void begin(std::int64_t zero);
    // The source is another one from here on.
    void restart();
    // The moment of the fragment's first sample, in nanoseconds.
    void push(std::int64_t stamp, std::span<const float> samples);
    // Silence up to the moment, unless sound is there already.
    void fillUntil(std::int64_t moment);
    // What is still held back is placed.
    void settle();

    // What came since the last call, in order.
    std::vector<float> take();
    // Samples of each channel up to now.
    std::int64_t position() const { return _position; }

private:
    std::int64_t samplePosition(std::int64_t stamp) const;
    void place(std::int64_t position, std::span<const float> samples);
    void follow(std::int64_t position, std::span<const float> samples);
    void append(std::span<const float> samples);
    void appendSilence(std::int64_t count);
    std::int64_t deviation() const;
    bool agree(std::span<const std::int64_t> positions) const;

    int _sampleRate;
    std::size_t _channels;
    std::int64_t _zero = 0;
    std::int64_t _position = 0;
    std::vector<float> _ready;

    bool _isSettled = false;
    std::vector<float> _held;
    std::vector<std::int64_t> _starts; // where each held fragment says that all of it begins

    std::int64_t _next = 0; // where the next fragment belongs
    std::vector<std::int64_t> _deviations;
};

} // namespace velbrix
