#pragma once

#include "platform/MediaProbe.h"
#include "platform/linux/media/libav/LibAv.h"

#include <QTransform>

#include <cstdint>

namespace velbrix {

// When to give up reading a file: on demand, or when it takes too long.
class WorkLimit {
public:
    WorkLimit(const Cancellation &ended, const Cancellation &cancelled);
    bool isReached() const;
    Failure reason() const;

private:
    Cancellation _ended; // nobody asks any more
    Cancellation _cancelled;
    std::int64_t _deadline;
};

// A video file under examination. One thread; the limit must outlive it.
class VideoInput {
public:
    // Reads the file's headers. Only local files in the formats of videos and
    // sound are opened, whatever their names say.
    static Result<VideoInput> open(const QString &path, const WorkLimit &limit);

    Result<VideoFacts> facts() const;
    AVFormatContext &format() const { return *_format; }
    // The video track, which cover art is not; null without one.
    AVStream *stream() const { return _stream; }
    // From a decoded picture to the size and orientation in which it is shown.
    QSize shownSize(QSize decoded, AVRational pixelShape) const;
    QTransform orientation() const;

private:
    VideoInput(AvInput format, AVStream *stream) : _format(std::move(format)), _stream(stream) {}

    AvInput _format;
    AVStream *_stream;
};

// Beyond this a picture is not decoded, and no memory is asked for it.
inline constexpr std::int64_t mostPixels = 8192LL * 8192;

} // namespace velbrix
