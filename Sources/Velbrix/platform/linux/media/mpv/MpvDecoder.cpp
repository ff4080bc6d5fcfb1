#include "platform/linux/media/mpv/MpvDecoder.h"

#include "platform/linux/media/mpv/MpvNode.h"

#include <QThread>

#include <algorithm>

namespace velbrix {

namespace {

constexpr qint64 largestPixels = qint64{2560} * 1440;
// What one thread decodes with room to spare.
constexpr qint64 pixelsPerSecond = qint64{1920} * 1088 * 31;

} // namespace

void tuneMpvDecoder(const LibMpv &mpv, mpv_handle *handle, const mpv_node &track)
{
    const qint64 pixels = nodeNumber(track, "demux-w") * nodeNumber(track, "demux-h");
    const qint64 rate = std::max<qint64>(nodeNumber(track, "demux-fps"), 25);
    int flag = pixels > largestPixels ? 1 : 0;
    mpv.mpv_set_property(handle, "vd-lavc-fast", MPV_FORMAT_FLAG, &flag);
    const char *skipped = pixels > largestPixels ? "nonref" : "default";
    mpv.mpv_set_property(handle, "vd-lavc-skiploopfilter", MPV_FORMAT_STRING, &skipped);
    // Each thread more holds pictures of its own.
    const int most = std::min(QThread::idealThreadCount(), 4);
    std::int64_t threads = pixels * rate <= pixelsPerSecond ? 1 : most;
    mpv.mpv_set_property(handle, "vd-lavc-threads", MPV_FORMAT_INT64, &threads);
}

} // namespace velbrix
