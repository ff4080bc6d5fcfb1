#include "platform/linux/media/mpv/LibMpv.h"

#include "platform/linux/media/libav/LibAv.h"
#include "platform/linux/media/libav/LoadedLibrary.h"

#include <malloc.h>

#include <clocale>
#include <cstring>

using namespace Qt::StringLiterals;

namespace velbrix {
namespace {

// Every thread of a player allocates from an arena of its own. Left alone, the
// C library soon keeps pictures and packets there and never gives them back.
void returnLargeBlocks()
{
    constexpr int bytes = 128 * 1024;
    mallopt(M_MMAP_THRESHOLD, bytes);
    mallopt(M_TRIM_THRESHOLD, bytes);
}

bool load(LibMpv &functions)
{
    returnLargeBlocks();
    QLibrary library(u"mpv"_s, MPV_CLIENT_API_VERSION >> 16);
    return library.load() VELB_MPV(VELB_RESOLVE);
}

const LibMpv *loaded()
{
    return loadedOnce<LibMpv>(load);
}

} // namespace

void preloadLibMpv()
{
    (void)loaded();
}

Result<const LibMpv *> libMpv()
{
    const LibMpv *const functions = loaded();
    if (!functions)
        return failure(u"缺少播放视频所需的组件 libmpv，请先安装"_s);
    // It reads and writes numbers with the functions of C and refuses to work
    // where these use a decimal comma. Ours come from Qt, which does not care.
    if (const char *const locale = std::setlocale(LC_NUMERIC, nullptr);
        !locale || std::strcmp(locale, "C") != 0)
        std::setlocale(LC_NUMERIC, "C");
    // A player that ends resets the log level for the others as well.
    if (const AvCodec *const av = avCodec())
        av->av_log_set_level(AV_LOG_QUIET);
    return functions;
}

} // namespace velbrix
