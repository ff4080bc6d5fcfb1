#pragma once

#include "platform/linux/media/mp4/MovieTrack.h"

#include <cstdint>
#include <optional>
#include <vector>

namespace velbrix {

// The samples of one track in one fragment.
struct FragmentRun {
    std::uint32_t trackId = 0;
    bool isVideo = false;
    std::uint64_t firstTime = 0; // decode time of the first sample
    std::vector<SampleRecord> samples;
    std::uint64_t byteCount = 0; // of all samples that follow the header
    // Where they lie already, when they are shown again.
    std::optional<std::uint64_t> place;
};

// The beginning of a movie (ISO/IEC 14496-12) that is being written: file type,
// a gap of 16 bytes that finishing turns into the header of one big mdat, and a
// header without samples. Track ids count from 1 in the order given.
struct LiveStart {
    Bytes bytes;
    std::uint64_t gapOffset = 0;
};
LiveStart liveStart(const std::vector<TrackDescription> &tracks);

// The header of a fragment, up to and including the one of its mdat. The
// samples follow, one run after the other.
Bytes fragmentHeader(std::uint32_t sequence, const std::vector<FragmentRun> &runs);

// The header of a finished movie. Tracks without samples are left out.
Bytes finalHeader(const std::vector<TrackDescription> &tracks, const std::vector<SampleTable> &tables);

// What goes into the gap: an mdat header covering `byteCount` bytes from there.
Bytes hugeDataHeader(std::uint64_t byteCount);

} // namespace velbrix
