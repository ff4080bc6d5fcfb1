#include "platform/linux/media/recording/H264Encoder.h"

#include <algorithm>
#include <cstdlib>
#include <cstring>
#include <utility>

extern "C" {
#include <x264.h>
}

using namespace Qt::StringLiterals;

namespace velbrix {
namespace {

constexpr int blockSize = 16;
constexpr int lengthSize = 4;

x264_param_t parameters(const MovieSettings &settings)
{
    x264_param_t p;
    x264_param_default_preset(&p, "ultrafast", nullptr);
    p.i_log_level = X264_LOG_NONE;
    p.i_width = settings.width;
    p.i_height = settings.height;
    p.i_csp = X264_CSP_I420;
    p.i_fps_num = static_cast<std::uint32_t>(settings.framesPerSecond);
    p.i_fps_den = 1;
    p.i_timebase_num = 1;
    p.i_timebase_den = static_cast<std::uint32_t>(settings.framesPerSecond);
    const double pixelRate = 1.0 * settings.width * settings.height * settings.framesPerSecond;
    p.i_threads = pixelRate > 1920.0 * 1080 * 60 ? 2 : 1;
    p.b_sliced_threads = 1;                    // no picture waits for the next one
    p.i_keyint_max = X264_KEYINT_MAX_INFINITE; // key pictures are asked for one by one
    p.i_scenecut_threshold = 0;
    p.i_bframe = 0;
    p.i_sync_lookahead = 0;
    p.rc.i_lookahead = 0;
    p.rc.b_mb_tree = 0;
    // Constant quantiser with the whole range open to the forced ones.
    p.rc.i_rc_method = X264_RC_CQP;
    p.rc.i_qp_constant = 25;
    p.rc.f_ip_factor = 11.32F; // 21 steps down
    p.rc.f_pb_factor = 11.32F; // and up
    p.analyse.b_transform_8x8 = 1;
    p.analyse.b_dct_decimate = 0; // costs more time than it saves bits
    p.analyse.b_mb_info = 1;
    p.b_annexb = 0;
    p.b_repeat_headers = 0;
    p.vui.b_fullrange = 0;
    p.vui.i_colorprim = 1;
    p.vui.i_transfer = 13;
    p.vui.i_colmatrix = 6;
    x264_param_apply_profile(&p, "high");
    return p;
}

} // namespace

H264Encoder::H264Encoder(const MovieSettings &settings)
    : _width(settings.width),
      _height(settings.height),
      _keyFrameInterval(std::max(1, settings.keyFrameInterval)),
      _rate(settings.videoBitRate, settings.framesPerSecond)
{
}

H264Encoder::~H264Encoder()
{
    if (_encoder)
        x264_encoder_close(_encoder);
}

Result<std::unique_ptr<H264Encoder>> H264Encoder::create(const MovieSettings &settings)
{
    if (settings.width < 2 || settings.height < 2 || settings.width % 2 || settings.height % 2 ||
        settings.framesPerSecond < 1 || settings.videoBitRate < 1)
        return failure(u"视频参数无效"_s);
    std::unique_ptr<H264Encoder> encoder(new H264Encoder(settings));
    x264_param_t p = parameters(settings);
    // The headers shall say that the time between pictures varies. All else is the same.
    p.b_vfr_input = 1;
    x264_t *twin = x264_encoder_open(&p);
    Result<void> read = twin ? encoder->readHeaders(twin) : failure(u"无法启动 H.264 编码器"_s);
    if (twin)
        x264_encoder_close(twin); // before the other takes its memory
    if (!read)
        return std::unexpected(read.error());
    p.b_vfr_input = 0; // with it each packet would wait for the next picture
    encoder->_encoder = x264_encoder_open(&p);
    if (!encoder->_encoder)
        return failure(u"无法启动 H.264 编码器"_s);
    return encoder;
}

Result<void> H264Encoder::readHeaders(x264_t *from)
{
    x264_nal_t *units = nullptr;
    int count = 0;
    x264_encoder_headers(from, &units, &count);
    std::span<const std::uint8_t> sps;
    std::span<const std::uint8_t> pps;
    for (const x264_nal_t &unit : std::span(units, static_cast<std::size_t>(std::max(count, 0)))) {
        const std::span payload(unit.p_payload + lengthSize,
                                static_cast<std::size_t>(unit.i_payload - lengthSize));
        if (unit.i_type == NAL_SPS)
            sps = payload;
        else if (unit.i_type == NAL_PPS)
            pps = payload;
    }
    if (sps.size() < 4 || pps.empty())
        return failure(u"无法启动 H.264 编码器"_s);
    _sampleEntry = h264SampleEntry(_width, _height, sps, pps);
    return {};
}

// One byte for each macroblock; the encoder frees it.
std::uint8_t *H264Encoder::unchangedBlocks(std::span<const PixelRect> changed) const
{
    const int columns = (_width + blockSize - 1) / blockSize;
    const int rows = (_height + blockSize - 1) / blockSize;
    const auto size = static_cast<std::size_t>(columns) * static_cast<std::size_t>(rows);
    auto *blocks = static_cast<std::uint8_t *>(std::malloc(size));
    if (!blocks)
        return nullptr;
    std::memset(blocks, X264_MBINFO_CONSTANT, size);
    for (const PixelRect &rect : changed) {
        const int left = std::clamp(rect.x / blockSize, 0, columns);
        const int right = std::clamp((rect.x + rect.width + blockSize - 1) / blockSize, left, columns);
        const int top = std::clamp(rect.y / blockSize, 0, rows);
        const int bottom = std::clamp((rect.y + rect.height + blockSize - 1) / blockSize, top, rows);
        for (int row = top; row < bottom; ++row)
            std::memset(blocks + std::ptrdiff_t{row} * columns + left, 0,
                        static_cast<std::size_t>(right - left));
    }
    return blocks;
}

Result<void> H264Encoder::encode(const PictureView &picture, std::span<const PixelRect> changed,
                                 std::int64_t tick, const Sink &sink)
{
    const bool isKey = _isFirst || tick >= nextKeyTick();
    std::uint8_t *const unchanged = std::exchange(_isFirst, false) ? nullptr : unchangedBlocks(changed);
    return encode(picture, unchanged, tick, isKey, _rate.nextQp(isKey), sink);
}

Result<void> H264Encoder::encodeResting(const PictureView &picture, std::int64_t tick, const Sink &sink)
{
    return encode(picture, nullptr, tick, true, _rate.restingQp(), sink);
}

// A step less cannot be seen.
bool H264Encoder::isSettled() const
{
    return _rate.restingQp() > _keyQp - 2;
}

void H264Encoder::wasRepeated(std::int64_t keyTick, std::int64_t lastTick)
{
    _keyTick = keyTick;
    _lastTick = lastTick;
}

Result<void> H264Encoder::encode(const PictureView &picture, std::uint8_t *unchanged, std::int64_t tick,
                                 bool isKey, int qp, const Sink &sink)
{
    x264_picture_t in;
    x264_picture_init(&in);
    in.img.i_csp = X264_CSP_I420;
    in.img.i_plane = 3;
    in.img.plane[0] = const_cast<std::uint8_t *>(picture.y);
    in.img.plane[1] = const_cast<std::uint8_t *>(picture.u);
    in.img.plane[2] = const_cast<std::uint8_t *>(picture.v);
    in.img.i_stride[0] = picture.strideY;
    in.img.i_stride[1] = in.img.i_stride[2] = picture.strideUV;
    in.i_pts = tick;
    in.i_type = isKey ? X264_TYPE_IDR : X264_TYPE_P;
    in.i_qpplus1 = qp + 1;
    in.prop.mb_info = unchanged;
    in.prop.mb_info_free = std::free;
    x264_nal_t *units = nullptr;
    int count = 0;
    x264_picture_t out;
    const int size = x264_encoder_encode(_encoder, &units, &count, &in, &out);
    if (size <= 0)
        return failure(u"H.264 编码失败"_s);
    if (isKey) {
        _keyTick = tick;
        _keyQp = qp;
    }
    _rate.spent(8LL * size, qp, isKey, _lastTick < 0 ? 1 : tick - _lastTick);
    _lastTick = tick;
    sink({{units[0].p_payload, static_cast<std::size_t>(size)}, tick, isKey});
    return {};
}

} // namespace velbrix
