#pragma once

#include "platform/MediaProbe.h"

namespace velbrix {

// AVFoundation's view of video files. The failures are in the system's words.
class AVMediaProbe final : public MediaProbe {
public:
    QCoro::Task<Result<VideoFacts>> facts(const QString path) override;
    QCoro::Task<Result<QImage>> frame(const QString path, double seconds, QSize bound,
                                      Cancellation cancellation) override;
};

} // namespace velbrix
