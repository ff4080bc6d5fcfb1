#pragma once

#include "foundation/FileThreads.h"
#include "platform/MediaProbe.h"

namespace velbrix {

// Videos by FFmpeg's libraries. Pictures are taken two at a time and never
// keep facts waiting. A file whose disk does not answer holds up no other for
// long. Questions still open when it is destroyed fail soon.
class LibAvMediaProbe final : public MediaProbe {
public:
    // The clock must outlive the probe.
    explicit LibAvMediaProbe(Clock &clock);
    ~LibAvMediaProbe() override;

    QStringList furtherExtensions() const override { return {QStringLiteral("gif")}; }
    QCoro::Task<Result<bool>> isFile(const QString path) override;
    QCoro::Task<Result<VideoFacts>> facts(const QString path) override;
    QCoro::Task<Result<QImage>> frame(const QString path, double seconds, QSize bound,
                                      Cancellation cancellation) override;

private:
    Cancellation _ended;
    FileThreads _looks;
    FileThreads _facts;
    FileThreads _pictures;
};

} // namespace velbrix
