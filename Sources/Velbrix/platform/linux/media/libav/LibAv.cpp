#include "platform/linux/media/libav/LibAvHandles.h"

#include "platform/linux/media/libav/LibraryFunction.h"

using namespace Qt::StringLiterals;

namespace velbrix {
namespace {

#define VELB_AV_RESOLVE(name) isComplete = resolve(library, #name, functions.name) && isComplete;

bool loadCodec(AvCodec &functions)
{
    QLibrary library(u"avcodec"_s, LIBAVCODEC_VERSION_MAJOR);
    bool isComplete = library.load();
    VELB_AV_CODEC(VELB_AV_RESOLVE)
    return isComplete;
}

bool loadUtil(AvCodec &functions)
{
    QLibrary library(u"avutil"_s, LIBAVUTIL_VERSION_MAJOR);
    bool isComplete = library.load();
    VELB_AV_UTIL(VELB_AV_RESOLVE)
    return isComplete;
}

bool loadFormat(AvFormat &functions)
{
    QLibrary library(u"avformat"_s, LIBAVFORMAT_VERSION_MAJOR);
    bool isComplete = library.load();
    VELB_AV_FORMAT(VELB_AV_RESOLVE)
    return isComplete;
}

bool loadScale(AvScale &functions)
{
    QLibrary library(u"swscale"_s, LIBSWSCALE_VERSION_MAJOR);
    bool isComplete = library.load();
    VELB_AV_SCALE(VELB_AV_RESOLVE)
    return isComplete;
}

#undef VELB_AV_RESOLVE

} // namespace

const AvCodec *avCodec()
{
    static AvCodec functions;
    static const bool isLoaded = loadCodec(functions) && loadUtil(functions);
    return isLoaded ? &functions : nullptr;
}

const AvFormat *avFormat()
{
    static AvFormat functions;
    static const bool isLoaded = loadFormat(functions);
    return isLoaded ? &functions : nullptr;
}

const AvScale *avScale()
{
    static AvScale functions;
    static const bool isLoaded = loadScale(functions);
    return isLoaded ? &functions : nullptr;
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
