#include "platform/linux/media/libav/LibAv.h"

#include "platform/linux/media/libav/LoadedLibrary.h"

using namespace Qt::StringLiterals;

namespace velbrix {
namespace {

bool loadCodec(AvCodec &functions)
{
    QLibrary library(u"avcodec"_s, LIBAVCODEC_VERSION_MAJOR);
    return library.load() VELB_AV_CODEC(VELB_RESOLVE);
}

bool loadUtil(AvCodec &functions)
{
    QLibrary library(u"avutil"_s, LIBAVUTIL_VERSION_MAJOR);
    return library.load() VELB_AV_UTIL(VELB_RESOLVE);
}

} // namespace

const AvCodec *avCodec()
{
    return loadedOnce<AvCodec>(
        [](AvCodec &functions) { return loadCodec(functions) && loadUtil(functions); });
}

const AvFormat *avFormat()
{
    return loadedOnce<AvFormat>([](AvFormat &functions) {
        QLibrary library(u"avformat"_s, LIBAVFORMAT_VERSION_MAJOR);
        return library.load() VELB_AV_FORMAT(VELB_RESOLVE);
    });
}

const AvScale *avScale()
{
    return loadedOnce<AvScale>([](AvScale &functions) {
        QLibrary library(u"swscale"_s, LIBSWSCALE_VERSION_MAJOR);
        return library.load() VELB_AV_SCALE(VELB_RESOLVE);
    });
}

AvDecoder openAvDecoder(const AVStream &stream, int threads, std::int64_t mostPixels)
{
    const AVCodec *codec = avCodec()->avcodec_find_decoder(stream.codecpar->codec_id);
    AvDecoder decoder(codec ? avCodec()->avcodec_alloc_context3(codec) : nullptr);
    if (!decoder || avCodec()->avcodec_parameters_to_context(decoder.get(), stream.codecpar) < 0)
        return {};
    decoder->thread_count = threads;
    decoder->max_pixels = mostPixels;
    decoder->pkt_timebase = stream.time_base;
    if (avCodec()->avcodec_open2(decoder.get(), codec, nullptr) < 0)
        return {};
    return decoder;
}

} // namespace velbrix
