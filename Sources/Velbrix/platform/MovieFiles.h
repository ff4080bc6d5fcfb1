#pragma once

#include "foundation/Result.h"

#include <QCoroTask>
#include <QString>

namespace velbrix {

struct MovieFacts {
    bool isPlayable = false;
    double duration = 0; // seconds
    bool hasVideo = false;
    int audioTracks = 0;

    bool operator==(const MovieFacts &) const = default;
};

// Movie files on disk. The work is done off the main thread; call and answer
// are on it.
class MovieFiles {
public:
    virtual ~MovieFiles() = default;

    // A file that is no movie is an answer (not playable), not a failure.
    virtual QCoro::Task<Result<MovieFacts>> inspect(const QString path) = 0;
    // Makes an ordinary movie of what a killed recording left. The file is
    // replaced only by a complete one; on a failure it is as it was.
    virtual QCoro::Task<Result<void>> repair(const QString path) = 0;
};

} // namespace velbrix
