#pragma once

#include "foundation/FileThreads.h"
#include "platform/MediaProbe.h"

namespace velbrix {

// AVFoundation's view of video files. The failures are in the system's words.
class AVMediaProbe final : public MediaProbe {
public:
    // The clock must outlive the probe.
    explicit AVMediaProbe(Clock &clock) : _looks(clock, 4) {}

    // AVFoundation plays no moving pictures of the Web.
    QStringList furtherExtensions() const override { return {}; }
    QCoro::Task<Result<bool>> isFile(const QString path) override;
    QCoro::Task<Result<VideoFacts>> facts(const QString path) override;
    QCoro::Task<Result<QImage>> frame(const QString path, double seconds, QSize bound,
                                      Cancellation cancellation) override;

private:
    FileThreads _looks;
};

} // namespace velbrix
