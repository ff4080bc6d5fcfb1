#pragma once

#include "foundation/Result.h"
#include "platform/linux/media/mp4/MovieBoxes.h"
#include "platform/linux/media/mp4/OutputFile.h"

#include <QString>

#include <cstdint>
#include <memory>
#include <mutex>
#include <optional>
#include <span>
#include <vector>

namespace velbrix {

// Writes an MPEG-4 movie that can be played however the program ends. While it
// grows it is a fragmented movie, a fragment per second and per key frame; what
// is missing after a kill is about one second. finish() turns it into an
// ordinary movie without copying media. Safe on any thread.
class Mp4Writer {
public:
    // Replaces an existing file. The first track decides about the fragments.
    static Result<std::unique_ptr<Mp4Writer>> create(const QString &path,
                                                     std::vector<TrackDescription> tracks);

    // One sample at its time in units of the track; it lasts until the next
    // one. The first one begins with the movie whatever its time; a time not
    // after the one before is moved behind it. After a first failure
    // everything fails the same way, and the file is playable.
    Result<void> add(std::size_t track, std::span<const std::uint8_t> bytes, std::int64_t time, bool isKey);
    // Shows the last two samples of the first track, a key picture and another,
    // again at these times; their bytes are in the file once. False when the
    // last two are no such pair.
    Result<bool> repeatPair(std::int64_t keyTime, std::int64_t time);
    // Ends each track at its time and completes the file. On a failure the
    // file stays fragmented, playable. An earlier failure does not matter if
    // the rest can be completed.
    Result<void> finish(std::span<const std::int64_t> endTimes);
    // Whether everything that was added is in the file.
    Result<void> state() const;
    // Brings what was written to the disk. Slow: not on a thread in a hurry. A
    // failure is one of the file: what the disk did not take is lost.
    Result<void> sync();

private:
    struct Pending {
        Bytes bytes;
        std::vector<SampleRecord> samples; // the last one has no duration yet
        std::uint64_t firstTime = 0;       // of the first and the last sample
        std::uint64_t lastTime = 0;
        bool hasBegun = false;
        std::optional<std::uint64_t> place; // of the samples, when they are in the file already
    };

    Mp4Writer() = default;
    static void closeLast(Pending &track, std::int64_t time);
    bool isFragmentDue(std::size_t track, bool isKey) const;
    Result<void> writeFragment(bool everything);

    mutable std::mutex _lock;
    OutputFile _file;
    std::uint64_t _gapOffset = 0;
    std::uint32_t _sequence = 0;
    std::vector<TrackDescription> _tracks;
    std::vector<Pending> _pending;
    std::vector<SampleTable> _tables;
    Result<void> _state;
};

} // namespace velbrix
