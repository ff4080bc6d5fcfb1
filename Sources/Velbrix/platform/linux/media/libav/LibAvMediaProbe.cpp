#include "platform/linux/media/libav/LibAvMediaProbe.h"

#include "platform/linux/media/libav/FittedSize.h"
#include "platform/linux/media/libav/VideoInput.h"

#include <QFileInfo>

#include <cmath>
#include <limits>
#include <vector>

using namespace Qt::StringLiterals;

namespace velbrix {
namespace {

constexpr int looksAtOnce = 4;
constexpr int factsAtOnce = 4; // those for thumbnails keep no others waiting
constexpr int picturesAtOnce = 2;

class Search {
public:
    Search(VideoInput &input, AVCodecContext &decoder, double seconds)
        : _format(input.format()), _stream(*input.stream()), _decoder(decoder)
    {
        if (seconds <= 0)
            return;
        const std::int64_t start = _stream.start_time == AV_NOPTS_VALUE ? 0 : _stream.start_time;
        _wanted = start + std::llround(std::min(seconds, 1e6) / av_q2d(_stream.time_base));
        // Where the file cannot seek, reading starts from the beginning.
        avFormat()->av_seek_frame(&_format, _stream.index, _wanted, AVSEEK_FLAG_BACKWARD);
    }

    // Null where no picture of the video can be decoded.
    AvPicture run(const WorkLimit &limit)
    {
        if (!_packet || !_last || !_next)
            return {};
        while (!limit.isReached() && !_hasEnded) {
            const bool atEnd = avFormat()->av_read_frame(&_format, _packet.get()) < 0;
            if (!atEnd && _packet->stream_index != _stream.index) {
                avCodec()->av_packet_unref(_packet.get());
                continue;
            }
            // On the way there, pictures that no other refers to are skipped.
            _decoder.skip_frame = !atEnd && _packet->pts != AV_NOPTS_VALUE && _packet->pts < _wanted
                                      ? AVDISCARD_NONREF
                                      : AVDISCARD_DEFAULT;
            avCodec()->avcodec_send_packet(&_decoder, atEnd ? nullptr : _packet.get());
            avCodec()->av_packet_unref(_packet.get());
            receive();
            _hasEnded = _hasEnded || atEnd;
        }
        return _last->width > 0 ? std::move(_last) : nullptr;
    }

private:
    void receive()
    {
        while (!_hasEnded && avCodec()->avcodec_receive_frame(&_decoder, _next.get()) >= 0) {
            avCodec()->av_frame_unref(_last.get());
            avCodec()->av_frame_move_ref(_last.get(), _next.get());
            const std::int64_t time = _last->best_effort_timestamp;
            _hasEnded = time == AV_NOPTS_VALUE || time >= _wanted;
        }
    }

    AVFormatContext &_format;
    AVStream &_stream;
    AVCodecContext &_decoder;
    AvPacket _packet{avCodec()->av_packet_alloc()};
    AvPicture _last{avCodec()->av_frame_alloc()};
    AvPicture _next{avCodec()->av_frame_alloc()};
    std::int64_t _wanted = std::numeric_limits<std::int64_t>::min();
    bool _hasEnded = false;
};

// A video that does not name its colour space has the one usual for its size,
// by the same bounds as the player's.
int colours(const AVFrame &picture)
{
    if (picture.colorspace != AVCOL_SPC_UNSPECIFIED)
        return picture.colorspace;
    return picture.width >= 1280 || picture.height > 576 ? SWS_CS_ITU709 : SWS_CS_ITU601;
}

Result<QImage> scaled(const AVFrame &picture, QSize size)
{
    const AvScaler scaler(avScale()->sws_getContext(
        picture.width, picture.height, static_cast<AVPixelFormat>(picture.format), size.width(),
        size.height(), AV_PIX_FMT_BGRA, SWS_AREA, nullptr, nullptr, nullptr));
    if (!scaler)
        return failure(u"无法转换画面"_s);
    avScale()->sws_setColorspaceDetails(scaler.get(), avScale()->sws_getCoefficients(colours(picture)),
                                        picture.color_range == AVCOL_RANGE_JPEG,
                                        avScale()->sws_getCoefficients(SWS_CS_DEFAULT), 1, 0, 1 << 16,
                                        1 << 16);
    // The library writes whole vectors, also beyond the end of a line.
    const int stride = (size.width() + 63) / 32 * 32 * 4;
    std::vector<std::uint8_t> pixels(static_cast<std::size_t>(stride) *
                                     static_cast<std::size_t>(size.height() + 1));
    std::uint8_t *const planes[] = {pixels.data(), nullptr, nullptr, nullptr};
    const int strides[] = {stride, 0, 0, 0};
    if (avScale()->sws_scale(scaler.get(), picture.data, picture.linesize, 0, picture.height, planes,
                             strides) <= 0)
        return failure(u"无法转换画面"_s);
    return QImage(pixels.data(), size.width(), size.height(), stride, QImage::Format_RGB32).copy();
}

// The first picture at or after the time, the last one where the video
// is shorter; as shown, made to fit the bound.
Result<QImage> videoPicture(VideoInput &input, double seconds, QSize bound, const WorkLimit &limit)
{
    if (!input.stream())
        return failure(u"视频中没有画面轨道"_s);
    const AvDecoder decoder = openAvDecoder(*input.stream(), 2, mostPixels);
    if (!decoder)
        return failure(u"没有能解码该视频的解码器"_s);
    const AvPicture picture = Search(input, *decoder, seconds).run(limit);
    if (limit.isReached())
        return std::unexpected(limit.reason());
    if (!picture)
        return failure(u"视频中没有可解码的画面"_s);
    const AVRational shape =
        avFormat()->av_guess_sample_aspect_ratio(&input.format(), input.stream(), picture.get());
    const QTransform turn = input.orientation();
    const QSize shown = fittedSize(input.shownSize({picture->width, picture->height}, shape), bound);
    auto image = scaled(*picture, turn.mapRect(QRect(QPoint(), shown)).size());
    if (image && !turn.isIdentity())
        *image = image->transformed(turn);
    return image;
}

Result<VideoFacts> findFacts(const QString &path, const Cancellation &ended)
{
    const WorkLimit limit(ended, Cancellation());
    const auto input = VideoInput::open(path, limit);
    if (!input)
        return std::unexpected(input.error());
    return input->facts();
}

Result<QImage> findPicture(const QString &path, double seconds, QSize bound, const Cancellation &ended,
                           const Cancellation &cancelled)
{
    const WorkLimit limit(ended, cancelled);
    auto input = VideoInput::open(path, limit);
    if (!input)
        return std::unexpected(input.error());
    return videoPicture(*input, seconds, bound, limit);
}

template <typename T> QCoro::Task<Result<T>> answered(QCoro::Task<std::optional<Result<T>>> asked)
{
    const auto answer = co_await asked;
    co_return answer ? *answer : Result<T>(failure(silentDiskWords));
}

} // namespace

LibAvMediaProbe::LibAvMediaProbe(Clock &clock)
    : _looks(clock, looksAtOnce), _facts(clock, factsAtOnce), _pictures(clock, picturesAtOnce)
{
}

LibAvMediaProbe::~LibAvMediaProbe()
{
    _ended.cancel();
}

QCoro::Task<Result<bool>> LibAvMediaProbe::isFile(const QString path)
{
    return answered(_looks.run([path] { return Result<bool>(QFileInfo(path).isFile()); }));
}

QCoro::Task<Result<VideoFacts>> LibAvMediaProbe::facts(const QString path)
{
    return answered(_facts.run([path, ended = _ended] { return findFacts(path, ended); }));
}

QCoro::Task<Result<QImage>> LibAvMediaProbe::frame(const QString path, double seconds, QSize bound,
                                                   Cancellation cancellation)
{
    return answered(_pictures.run([path, seconds, bound, ended = _ended, cancellation] {
        return findPicture(path, seconds, bound, ended, cancellation);
    }));
}

} // namespace velbrix
