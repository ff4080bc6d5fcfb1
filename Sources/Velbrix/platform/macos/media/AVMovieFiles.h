#pragma once

#include "platform/MovieFiles.h"

namespace velbrix {

// AVFoundation's view of movie files. A repair copies the samples as they are
// into a new file beside the old one and then takes its place.
class AVMovieFiles final : public MovieFiles {
public:
    QCoro::Task<Result<MovieFacts>> inspect(const QString path) override;
    QCoro::Task<Result<void>> repair(const QString path) override;
};

} // namespace velbrix
