#pragma once

#include "foundation/Result.h"
#include "platform/linux/media/mp4/MovieTrack.h"
#include "platform/linux/media/mp4/OutputFile.h"

#include <cstdint>
#include <vector>

namespace velbrix {

// What a movie file of this program consists of. Reads any bytes without harm;
// memory is bounded by the size of the file.
struct MovieContents {
    bool isFinished = false;     // an ordinary movie already
    std::uint64_t gapOffset = 0; // what finishing has to patch
    std::vector<TrackDescription> tracks;
    std::vector<SampleTable> tables; // of the complete fragments
};

Result<MovieContents> readMovie(const OutputFile &file);

} // namespace velbrix
