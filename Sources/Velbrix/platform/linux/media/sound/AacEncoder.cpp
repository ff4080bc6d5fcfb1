#include "platform/linux/media/sound/AacEncoder.h"

#include "platform/linux/media/libav/LibAv.h"

#include <algorithm>

using namespace Qt::StringLiterals;

namespace velbrix {

Result<std::unique_ptr<AacEncoder>> AacEncoder::create(int sampleRate, int channels, int bitRate)
{
    const AvCodec *av = avCodec();
    if (!av)
        return failure(u"系统没有所需版本的编解码库 libavcodec"_s);
    av->av_log_set_level(AV_LOG_ERROR);
    const AVCodec *codec = av->avcodec_find_encoder(AV_CODEC_ID_AAC);
    if (!codec)
        return failure(u"系统的编解码库没有 AAC 编码器"_s);
    std::unique_ptr<AacEncoder> encoder(new AacEncoder(*av));
    encoder->_codec = av->avcodec_alloc_context3(codec);
    encoder->_frame = av->av_frame_alloc();
    encoder->_packet = av->av_packet_alloc();
    AVCodecContext *context = encoder->_codec;
    if (!context || !encoder->_frame || !encoder->_packet)
        return failure(u"内存不足，无法启动 AAC 编码器"_s);
    context->sample_rate = sampleRate;
    context->bit_rate = bitRate;
    context->sample_fmt = AV_SAMPLE_FMT_FLTP;
    context->time_base = {1, sampleRate};
    context->flags |= AV_CODEC_FLAG_GLOBAL_HEADER;
    av->av_channel_layout_default(&context->ch_layout, channels);
    if (av->avcodec_open2(context, codec, nullptr) < 0)
        return failure(u"无法启动 AAC 编码器"_s);

    AVFrame *frame = encoder->_frame;
    frame->nb_samples = context->frame_size;
    frame->format = context->sample_fmt;
    frame->sample_rate = sampleRate;
    if (av->av_channel_layout_copy(&frame->ch_layout, &context->ch_layout) < 0 ||
        av->av_frame_get_buffer(frame, 0) < 0)
        return failure(u"内存不足，无法启动 AAC 编码器"_s);
    encoder->_sampleEntry =
        aacSampleEntry(sampleRate, channels, bitRate,
                       {context->extradata, static_cast<std::size_t>(context->extradata_size)});
    return encoder;
}

AacEncoder::~AacEncoder()
{
    _av.av_packet_free(&_packet);
    _av.av_frame_free(&_frame);
    _av.avcodec_free_context(&_codec);
}

int AacEncoder::delay() const
{
    return _codec->initial_padding;
}

Result<void> AacEncoder::encode(std::span<const float> samples, const Sink &sink)
{
    const auto channels = static_cast<std::size_t>(_codec->ch_layout.nb_channels);
    while (samples.size() >= channels) {
        // The encoder may still hold the frame before.
        if (_filled == 0 && _av.av_frame_make_writable(_frame) < 0)
            return failure(u"内存不足，声音编码失败"_s);
        const auto room = static_cast<std::size_t>(_codec->frame_size - _filled);
        const std::size_t count = std::min(room, samples.size() / channels);
        for (std::size_t channel = 0; channel < channels; ++channel) {
            float *to = reinterpret_cast<float *>(_frame->data[channel]) + _filled;
            for (std::size_t i = 0; i < count; ++i)
                to[i] = samples[i * channels + channel];
        }
        samples = samples.subspan(count * channels);
        _filled += static_cast<int>(count);
        if (_filled < _codec->frame_size)
            break;
        if (auto sent = sendFrame(); !sent)
            return sent;
        if (auto received = receive(sink); !received)
            return received;
    }
    return {};
}

Result<void> AacEncoder::sendFrame()
{
    _frame->pts = _sent;
    _sent += _codec->frame_size;
    _filled = 0;
    if (_av.avcodec_send_frame(_codec, _frame) < 0)
        return failure(u"声音编码失败"_s);
    return {};
}

Result<void> AacEncoder::receive(const Sink &sink)
{
    for (;;) {
        const int result = _av.avcodec_receive_packet(_codec, _packet);
        if (result == AVERROR(EAGAIN) || result == AVERROR_EOF)
            return {};
        if (result < 0)
            return failure(u"声音编码失败"_s);
        sink({_packet->data, static_cast<std::size_t>(_packet->size)}, _packet->pts + delay());
        _av.av_packet_unref(_packet);
    }
}

Result<void> AacEncoder::flush(const Sink &sink)
{
    if (_filled > 0) {
        const std::vector<float> silence(static_cast<std::size_t>(_codec->frame_size - _filled) *
                                         static_cast<std::size_t>(_codec->ch_layout.nb_channels));
        if (auto encoded = encode(silence, sink); !encoded)
            return encoded;
    }
    if (_av.avcodec_send_frame(_codec, nullptr) < 0)
        return failure(u"声音编码失败"_s);
    return receive(sink);
}

} // namespace velbrix
