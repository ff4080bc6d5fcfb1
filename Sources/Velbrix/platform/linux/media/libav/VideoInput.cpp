#include "platform/linux/media/libav/VideoInput.h"

#include "platform/linux/media/libav/VideoFile.h"
#include "platform/linux/media/recording/MonotonicTime.h"

#include <QFile>

#include <array>
#include <cmath>
#include <vector>

extern "C" {
#include <libavutil/display.h>
}

using namespace Qt::StringLiterals;

namespace velbrix {
namespace {

constexpr std::int64_t longestWork = 8'000'000'000; // nanoseconds

// Demuxers of one file each: those of playlists would open others, those of
// pictures and text would take nearly anything for a video.
constexpr auto demuxers = "mov,matroska,avi,asf,flv,mpegts,mpeg,ogg,gif,mp3,wav,flac,aac";

struct Options {
    Options() = default;
    ~Options() { avCodec()->av_dict_free(&entries); }
    Q_DISABLE_COPY_MOVE(Options)
    void set(const char *key, const char *value) { avCodec()->av_dict_set(&entries, key, value, 0); }

    AVDictionary *entries = nullptr;
};

// Why a file that no demuxer takes cannot be shown.
QString refusal(const QString &path)
{
    QFile file(path);
    const QByteArray start = file.open(QIODevice::ReadOnly) ? file.read(12) : QByteArray();
    if (start.startsWith("RIFF") && start.endsWith("WEBP"))
        return u"不能播放 WebP 图片，请先转换成 MP4 或 GIF"_s;
    return notPlayableWords();
}

bool isStillGif(const AVFormatContext &format)
{
    return QByteArrayView(format.iformat->name) == "gif" && format.streams[0]->nb_frames == 1;
}

int isOverLimit(void *limit)
{
    return static_cast<const WorkLimit *>(limit)->isReached() ? 1 : 0;
}

AvInput openFormat(const QString &path, const WorkLimit &limit)
{
    AVFormatContext *format = avFormat()->avformat_alloc_context();
    if (!format)
        return {};
    format->interrupt_callback = {isOverLimit, const_cast<WorkLimit *>(&limit)};
    Options options;
    options.set("protocol_whitelist", "file");
    options.set("format_whitelist", demuxers);
    // It frees the context when it fails.
    if (avFormat()->avformat_open_input(&format, ("file:" + QFile::encodeName(path)).constData(), nullptr,
                                        &options.entries) < 0)
        return {};
    return AvInput(format);
}

// Decodes a little of every track, so the same bound holds as later.
bool readStreams(AVFormatContext *format)
{
    const std::size_t known = format->nb_streams;
    std::vector<Options> each(known);
    std::vector<AVDictionary *> entries;
    for (Options &options : each) {
        options.set("max_pixels", QByteArray::number(qint64(mostPixels)).constData());
        entries.push_back(options.entries);
    }
    const bool isRead =
        avFormat()->avformat_find_stream_info(format, known > 0 ? entries.data() : nullptr) >= 0;
    for (std::size_t i = 0; i < known; ++i)
        each[i].entries = entries[i];
    return isRead;
}

AVStream *pictures(const AVFormatContext &format)
{
    constexpr int stills = AV_DISPOSITION_ATTACHED_PIC | AV_DISPOSITION_TIMED_THUMBNAILS;
    AVStream *largest = nullptr;
    const auto area = [](const AVStream &stream) {
        return std::int64_t(stream.codecpar->width) * stream.codecpar->height;
    };
    for (unsigned i = 0; i < format.nb_streams; ++i) {
        AVStream *stream = format.streams[i];
        if (stream->codecpar->codec_type == AVMEDIA_TYPE_VIDEO && !(stream->disposition & stills) &&
            (!largest || area(*stream) > area(*largest)))
            largest = stream;
    }
    return largest;
}

double framesPerSecond(const AVStream &stream)
{
    for (const AVRational rate : {stream.avg_frame_rate, stream.r_frame_rate}) {
        if (rate.num > 0 && rate.den > 0 && rate.num / rate.den <= 1000)
            return av_q2d(rate);
    }
    return 0;
}

double seconds(const AVFormatContext &format, const AVStream *stream)
{
    if (format.duration > 0)
        return static_cast<double>(format.duration) / AV_TIME_BASE;
    return stream && stream->duration > 0 ? static_cast<double>(stream->duration) * av_q2d(stream->time_base)
                                          : 0.0;
}

const std::int32_t *displayMatrix(const AVStream &stream)
{
#if LIBAVFORMAT_VERSION_MAJOR >= 61
    const AVPacketSideData *data = stream.codecpar->coded_side_data;
    const int count = stream.codecpar->nb_coded_side_data;
#else
    const AVPacketSideData *data = stream.side_data;
    const int count = stream.nb_side_data;
#endif
    for (int i = 0; i < count; ++i) {
        if (data[i].type == AV_PKT_DATA_DISPLAYMATRIX && data[i].size >= 9 * sizeof(std::int32_t))
            return reinterpret_cast<const std::int32_t *>(data[i].data);
    }
    return nullptr;
}

} // namespace

WorkLimit::WorkLimit(const Cancellation &ended, const Cancellation &cancelled)
    : _ended(ended), _cancelled(cancelled), _deadline(monotonicNow() + longestWork)
{
}

bool WorkLimit::isReached() const
{
    return _ended.isCancelled() || _cancelled.isCancelled() || monotonicNow() > _deadline;
}

Failure WorkLimit::reason() const
{
    return {_ended.isCancelled() || _cancelled.isCancelled() ? u"已取消"_s : u"读取时间过长"_s};
}

Result<VideoInput> VideoInput::open(const QString &path, const WorkLimit &limit)
{
    if (limit.isReached())
        return std::unexpected(limit.reason());
    if (const auto usable = checkVideoFile(path); !usable)
        return std::unexpected(usable.error());
    if (!avCodec() || !avFormat() || !avScale())
        return failure(u"系统没有所需版本的 FFmpeg 库"_s);
    avCodec()->av_log_set_level(AV_LOG_QUIET); // the answer says it all
    AvInput format = openFormat(path, limit);
    const bool isRead = format && readStreams(format.get());
    if (limit.isReached())
        return std::unexpected(limit.reason());
    if (!isRead || format->nb_streams == 0)
        return failure(refusal(path));
    if (isStillGif(*format))
        return failure(u"这张 GIF 只有一幅画面，不会动"_s);
    AVStream *const stream = pictures(*format);
    return VideoInput(std::move(format), stream);
}

Result<VideoFacts> VideoInput::facts() const
{
    if (!_stream)
        return VideoFacts{};
    const QSize coded(_stream->codecpar->width, _stream->codecpar->height);
    if (coded.isEmpty() || std::int64_t(coded.width()) * coded.height() > mostPixels)
        return failure(notPlayableWords());
    const AVRational shape = avFormat()->av_guess_sample_aspect_ratio(_format.get(), _stream, nullptr);
    return VideoFacts{.hasVideo = true,
                      .size = shownSize(coded, shape),
                      .framesPerSecond = velbrix::framesPerSecond(*_stream),
                      .duration = seconds(*_format, _stream)};
}

QSize VideoInput::shownSize(QSize decoded, AVRational pixelShape) const
{
    const double shape = pixelShape.num > 0 && pixelShape.den > 0 ? av_q2d(pixelShape) : 1;
    // Pixels more than ten times as wide as high, or the reverse, mean a broken header.
    const bool isPlausible = shape > 0.1 && shape < 10;
    const QSize upright(isPlausible ? std::max(1, static_cast<int>(std::lround(decoded.width() * shape)))
                                    : decoded.width(),
                        decoded.height());
    return orientation().mapRect(QRect(QPoint(), upright)).size();
}

QTransform VideoInput::orientation() const
{
    const std::int32_t *matrix = displayMatrix(*_stream);
    if (!matrix)
        return {};
    std::array<int, 4> turn{};
    for (const int i : {0, 1, 2, 3})
        turn[static_cast<std::size_t>(i)] =
            static_cast<int>(std::lround(matrix[i < 2 ? i : i + 1] / 65536.0));
    const auto [a, b, c, d] = turn;
    // Quarter turns and mirrors only, like other players.
    const bool isQuarter =
        std::abs(a) == std::abs(d) && std::abs(b) == std::abs(c) && std::abs(a) + std::abs(b) == 1;
    return isQuarter ? QTransform(a, b, c, d, 0, 0) : QTransform();
}

} // namespace velbrix
