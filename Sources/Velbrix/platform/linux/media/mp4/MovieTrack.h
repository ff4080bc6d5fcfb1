#pragma once

#include "platform/linux/media/mp4/BoxWriter.h"

#include <cstdint>
#include <utility>
#include <vector>

namespace velbrix {

// What a track of the movie is, as far as it does not depend on its samples.
struct TrackDescription {
    bool isVideo = false;
    std::uint32_t timescale = 1; // units per second of all times of the track
    int width = 0;               // pixels, of a video track
    int height = 0;
    std::int64_t mediaStart = 0; // the presentation begins here: what the encoder put before is skipped
    Bytes sampleEntry;           // one complete avc1 or mp4a box
};

// One encoded picture or sound frame.
struct SampleRecord {
    std::uint32_t size = 0; // bytes
    std::uint32_t duration = 0;
    bool isKey = true;
};

// Where the samples of one track lie in the file and how long they last.
// Grows by one chunk per fragment; a day of video needs some 20 MB.
class SampleTable {
public:
    struct Chunk {
        std::uint64_t offset = 0; // in the file
        std::uint32_t count = 0;  // samples
    };
    struct Run {
        std::uint32_t count = 0;
        std::uint32_t duration = 0;
    };

    void append(std::uint64_t offset, const std::vector<SampleRecord> &samples)
    {
        if (samples.empty())
            return;
        _chunks.push_back({offset, static_cast<std::uint32_t>(samples.size())});
        for (const SampleRecord &sample : samples) {
            _sizes.push_back(sample.size);
            if (sample.isKey)
                _keys.push_back(static_cast<std::uint32_t>(_sizes.size()));
            addDuration(sample.duration);
        }
    }
    // The last sample lasts longer than it said.
    void extendLast(std::uint32_t by)
    {
        if (_runs.empty() || by == 0)
            return;
        const std::uint32_t duration = _runs.back().duration;
        if (--_runs.back().count == 0)
            _runs.pop_back();
        _end -= duration;
        addDuration(duration + by);
    }

    bool isEmpty() const { return _sizes.empty(); }
    std::uint64_t end() const { return _end; }
    const std::vector<std::uint32_t> &sizes() const { return _sizes; }
    const std::vector<std::uint32_t> &keys() const { return _keys; } // sample numbers from 1
    const std::vector<Run> &runs() const { return _runs; }
    const std::vector<Chunk> &chunks() const { return _chunks; }

private:
    void addDuration(std::uint32_t duration)
    {
        if (_runs.empty() || _runs.back().duration != duration)
            _runs.push_back({0, duration});
        ++_runs.back().count;
        _end += duration;
    }

    std::vector<std::uint32_t> _sizes;
    std::vector<std::uint32_t> _keys;
    std::vector<Run> _runs;
    std::vector<Chunk> _chunks;
    std::uint64_t _end = 0;
};

// Sample descriptions from what the encoders say about themselves: avc1 with its
// avcC (ISO/IEC 14496-15), mp4a with its esds (ISO/IEC 14496-14).
Bytes h264SampleEntry(int width, int height, std::span<const std::uint8_t> sps,
                      std::span<const std::uint8_t> pps);
Bytes aacSampleEntry(int sampleRate, int channels, int bitRate, std::span<const std::uint8_t> audioConfig);

} // namespace velbrix
