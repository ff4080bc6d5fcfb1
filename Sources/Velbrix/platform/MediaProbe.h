#pragma once

#include "foundation/ProcessRunner.h"
#include "foundation/Result.h"

#include <QCoroTask>
#include <QImage>
#include <QSize>
#include <QString>
#include <QStringList>

namespace velbrix {

struct VideoFacts {
    bool hasVideo = false; // a track of pictures; the rest is zero without it
    QSize size;            // as shown, pixels
    double framesPerSecond = 0;
    double duration = 0; // seconds

    bool operator==(const VideoFacts &) const = default;
};

// Looks into video files. The work is done off the main thread; call and
// answer are on it. A hostile file costs at most a failure.
class MediaProbe {
public:
    virtual ~MediaProbe() = default;

    // Of kinds of moving pictures that this host plays beside the videos that
    // every host does; lower case.
    virtual QStringList furtherExtensions() const = 0;

    // Whether a file lies there; a failure where its disk does not answer in time.
    virtual QCoro::Task<Result<bool>> isFile(const QString path) = 0;

    virtual QCoro::Task<Result<VideoFacts>> facts(const QString path) = 0;
    // The first picture at or after the time, made to fit the bound (never
    // enlarged). A cancelled search answers a failure soon.
    virtual QCoro::Task<Result<QImage>> frame(const QString path, double seconds, QSize bound,
                                              Cancellation cancellation) = 0;
};

} // namespace velbrix
