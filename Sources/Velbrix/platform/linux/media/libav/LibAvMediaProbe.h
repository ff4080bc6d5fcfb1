#pragma once

#include "platform/MediaProbe.h"

#include <QThreadPool>

namespace velbrix {

// Videos by FFmpeg's libraries. Pictures are taken two at a time and never
// keep facts waiting. Questions still open
// when it is destroyed fail soon.
class LibAvMediaProbe final : public MediaProbe {
public:
    LibAvMediaProbe();
    ~LibAvMediaProbe() override;

    QCoro::Task<Result<VideoFacts>> facts(const QString path) override;
    QCoro::Task<Result<QImage>> frame(const QString path, double seconds, QSize bound,
                                      Cancellation cancellation) override;

private:
    Cancellation _ended;
    QThreadPool _factThreads;
    QThreadPool _pictureThreads;
};

} // namespace velbrix
