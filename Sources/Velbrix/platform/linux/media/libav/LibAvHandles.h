#pragma once

#include "platform/linux/media/libav/LibAv.h"

#include <cstdint>
#include <memory>

namespace velbrix {

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
