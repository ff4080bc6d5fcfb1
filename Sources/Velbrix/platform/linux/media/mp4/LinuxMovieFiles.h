#pragma once

#include "platform/MovieFiles.h"

namespace velbrix {

// Movie files by FFmpeg's libraries; a recording is repaired in place.
class LinuxMovieFiles final : public MovieFiles {
public:
    QCoro::Task<Result<MovieFacts>> inspect(const QString path) override;
    QCoro::Task<Result<void>> repair(const QString path) override;
};

} // namespace velbrix
