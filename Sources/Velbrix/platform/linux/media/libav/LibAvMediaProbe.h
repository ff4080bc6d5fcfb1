#pragma once

#include "platform/MediaProbe.h"

#include <QThreadPool>

#include <atomic>
#include <memory>

namespace velbrix {

// Videos by FFmpeg's libraries. Pictures are taken two at a time and never
// keep facts waiting. What is still asked when it dies fails soon.
class LibAvMediaProbe final : public MediaProbe {
public:
    LibAvMediaProbe();
    ~LibAvMediaProbe() override;

    QCoro::Task<Result<VideoFacts>> facts(const QString path) override;
    QCoro::Task<Result<QImage>> frame(const QString path, double seconds, QSize bound,
                                      Cancellation cancellation) override;

private:
    std::shared_ptr<std::atomic<bool>> _ended = std::make_shared<std::atomic<bool>>(false);
    QThreadPool _factThreads;
    QThreadPool _pictureThreads;
};

} // namespace velbrix
