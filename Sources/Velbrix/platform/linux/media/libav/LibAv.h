#pragma once

extern "C" {
#include <libavcodec/avcodec.h>
#include <libavformat/avformat.h>
#include <libavutil/log.h>
#include <libswscale/swscale.h>
}

#include <cstdint>
#include <memory>

// The functions of libavcodec, libavformat, libavutil and libswscale that we call.
#define VELB_AV_CODEC(X)                                                                                     \
    X(avcodec_alloc_context3)                                                                                \
    X(avcodec_find_decoder)                                                                                  \
    X(avcodec_find_encoder)                                                                                  \
    X(avcodec_free_context)                                                                                  \
    X(avcodec_open2)                                                                                         \
    X(avcodec_parameters_to_context)                                                                         \
    X(avcodec_receive_frame)                                                                                 \
    X(avcodec_receive_packet)                                                                                \
    X(avcodec_send_frame)                                                                                    \
    X(avcodec_send_packet)                                                                                   \
    X(av_packet_alloc)                                                                                       \
    X(av_packet_free)                                                                                        \
    X(av_packet_unref)
#define VELB_AV_UTIL(X)                                                                                      \
    X(av_channel_layout_copy)                                                                                \
    X(av_channel_layout_default)                                                                             \
    X(av_dict_free)                                                                                          \
    X(av_dict_set)                                                                                           \
    X(av_frame_alloc)                                                                                        \
    X(av_frame_free)                                                                                         \
    X(av_frame_get_buffer)                                                                                   \
    X(av_frame_make_writable)                                                                                \
    X(av_frame_move_ref)                                                                                     \
    X(av_frame_unref)                                                                                        \
    X(av_log_set_level)
#define VELB_AV_FORMAT(X)                                                                                    \
    X(av_find_best_stream)                                                                                   \
    X(av_guess_sample_aspect_ratio)                                                                          \
    X(av_read_frame)                                                                                         \
    X(av_seek_frame)                                                                                         \
    X(avformat_alloc_context)                                                                                \
    X(avformat_close_input)                                                                                  \
    X(avformat_find_stream_info)                                                                             \
    X(avformat_open_input)
#define VELB_AV_SCALE(X)                                                                                     \
    X(sws_freeContext)                                                                                       \
    X(sws_getCoefficients)                                                                                   \
    X(sws_getContext)                                                                                        \
    X(sws_scale)                                                                                             \
    X(sws_setColorspaceDetails)

namespace velbrix {

#define VELB_AV_MEMBER(name) decltype(&::name) name = nullptr;

// Loaded when first asked for and not with the program: they bring more than
// a hundred libraries, which every start and every command would wait for.
struct AvCodec {
    VELB_AV_CODEC(VELB_AV_MEMBER)
    VELB_AV_UTIL(VELB_AV_MEMBER)
};
struct AvFormat {
    VELB_AV_FORMAT(VELB_AV_MEMBER)
};
struct AvScale {
    VELB_AV_SCALE(VELB_AV_MEMBER)
};

#undef VELB_AV_MEMBER

// Null where the library of the version we were built with is missing. Any
// thread; the first call takes some 20 ms.
const AvCodec *avCodec();
const AvFormat *avFormat();
const AvScale *avScale();

// What the libraries hand out, with its end. Only while they are loaded.
struct AvRelease {
    void operator()(AVFormatContext *input) const { avFormat()->avformat_close_input(&input); }
    void operator()(AVCodecContext *codec) const { avCodec()->avcodec_free_context(&codec); }
    void operator()(AVPacket *packet) const { avCodec()->av_packet_free(&packet); }
    void operator()(AVFrame *frame) const { avCodec()->av_frame_free(&frame); }
    void operator()(SwsContext *scaler) const { avScale()->sws_freeContext(scaler); }
};

using AvInput = std::unique_ptr<AVFormatContext, AvRelease>;
using AvDecoder = std::unique_ptr<AVCodecContext, AvRelease>;
using AvPacket = std::unique_ptr<AVPacket, AvRelease>;
using AvPicture = std::unique_ptr<AVFrame, AvRelease>;
using AvScaler = std::unique_ptr<SwsContext, AvRelease>;

// Ready for the packets of the stream; null where no decoder takes them.
AvDecoder openAvDecoder(const AVStream &stream, int threads, std::int64_t mostPixels);

} // namespace velbrix
