#include "platform/linux/media/mpv/MpvOptions.h"

#include "platform/linux/media/mpv/MpvNode.h"

#include <QByteArrayList>
#include <QThread>

#include <algorithm>
#include <array>

namespace velbrix {

namespace {

struct Option {
    const char *name;
    const char *value;
};

constexpr std::array<Option, 42> options{{
    // Nothing of the user's or the system's own player.
    {"config", "no"},
    {"load-scripts", "no"},
    {"ytdl", "no"},
    {"osc", "no"},
    {"osd-level", "0"},
    {"terminal", "no"},
    {"input-default-bindings", "no"},
    {"input-vo-keyboard", "no"},
    {"input-media-keys", "no"},
    {"resume-playback", "no"},
    {"save-position-on-quit", "no"},
    {"stop-screensaver", "no"},
    // One file and nothing that it names or that lies beside it.
    {"demuxer", "lavf"},
    {"access-references", "no"},
    {"autoload-files", "no"},
    {"sub-auto", "no"},
    {"audio-file-auto", "no"},
    {"cover-art-auto", "no"},
    {"audio-display", "no"},
    {"sid", "no"},
    {"aid", "no"},
    {"vo", "libmpv"},
    {"ao", "pulse,null"},
    {"audio-client-name", "Velbrix"},
    {"audio-fallback-to-null", "yes"},
    {"hwdec", "no"},
    {"idle", "yes"},
    {"pause", "yes"},
    {"loop-file", "inf"},
    {"keepaspect", "no"},
    // Whoever paints by hand gets pictures that lie as they are stored, and their
    // size as it is shown; see tuneMpvDecoder().
    {"video-rotate", "no"},
    // Eight seconds ahead, whatever the bit rate.
    {"cache", "no"},
    {"demuxer-thread", "yes"},
    {"demuxer-readahead-secs", "8"},
    {"demuxer-max-bytes", "32MiB"},
    {"demuxer-max-back-bytes", "0"},
    {"demuxer-donate-buffer", "no"},
    // Measured the cheapest that look right, see MpvPlayer::setScaling().
    {"zimg-scaler", "bilinear"},
    {"zimg-scaler-chroma", "bilinear"},
    {"zimg-threads", "1"},
    {"sws-scaler", "fast-bilinear"},
    {"sws-fast", "yes"},
}};

// Containers of single files. Others name further files or addresses.
constexpr const char *containers = "mov,mp4,matroska,webm,avi,asf,flv,mpegts,mpeg,ogg,gif";

constexpr qint64 largestPixels = qint64{2560} * 1440;
constexpr qint64 mostLargePictures = 31; // a second
// What one thread decodes with room to spare.
constexpr qint64 pixelsPerSecond = qint64{1920} * 1088 * 31;

// The filter that makes a picture stand upright.
const char *uprightFilter(qint64 turn)
{
    switch (turn) {
    case 90:
        return "lavfi=[transpose=clock]";
    case 180:
        return "lavfi=[hflip,vflip]";
    case 270:
        return "lavfi=[transpose=cclock]";
    default:
        return "";
    }
}

} // namespace

bool setMpvOptions(const LibMpv &mpv, mpv_handle *handle)
{
    // An option that a newer version has dropped is no reason to show nothing;
    // one that keeps files apart from the rest of the world is.
    for (const Option &option : options)
        mpv.mpv_set_option_string(handle, option.name, option.value);
    std::array<char *, 2> keys{const_cast<char *>("format_whitelist"),
                               const_cast<char *>("protocol_whitelist")};
    std::array<mpv_node, 2> values{textNode(containers), textNode("file")};
    mpv_node_list list{2, values.data(), keys.data()};
    mpv_node map{};
    map.format = MPV_FORMAT_NODE_MAP;
    map.u.list = &list;
    return mpv.mpv_set_option(handle, "demuxer-lavf-o", MPV_FORMAT_NODE, &map) >= 0 &&
           mpv.mpv_set_option_string(handle, "demuxer", "lavf") >= 0;
}

void tuneMpvDecoder(const LibMpv &mpv, mpv_handle *handle, const mpv_node &track)
{
    const qint64 pixels = nodeNumber(track, "demux-w") * nodeNumber(track, "demux-h");
    const qint64 rate = std::max<qint64>(nodeNumber(track, "demux-fps"), 25);
    int flag = pixels > largestPixels ? 1 : 0;
    mpv.mpv_set_property(handle, "vd-lavc-fast", MPV_FORMAT_FLAG, &flag);
    const char *skipped = pixels > largestPixels ? "nonref" : "default";
    mpv.mpv_set_property(handle, "vd-lavc-skiploopfilter", MPV_FORMAT_STRING, static_cast<void *>(&skipped));
    // More than thirty large pictures a second: those that no other needs are left out.
    const char *dropped = pixels > largestPixels && rate > mostLargePictures ? "nonref" : "default";
    mpv.mpv_set_property(handle, "vd-lavc-skipframe", MPV_FORMAT_STRING, static_cast<void *>(&dropped));
    // The player takes small videos for an old television's, by their height, and
    // would shift their colours; nothing else here does.
    const bool isSmall = nodeNumber(track, "demux-w") < 1280 && nodeNumber(track, "demux-h") <= 576;
    QByteArrayList filters;
    if (isSmall)
        filters.append("format:primaries=bt.709");
    if (const QByteArray upright = uprightFilter(nodeNumber(track, "demux-rotation")); !upright.isEmpty())
        filters.append(upright);
    const QByteArray joined = filters.join(',');
    const char *filter = joined.constData();
    mpv.mpv_set_property(handle, "vf", MPV_FORMAT_STRING, static_cast<void *>(&filter));
    // Each thread more holds pictures of its own.
    const int most = std::min(QThread::idealThreadCount(), 4);
    std::int64_t threads = pixels * rate <= pixelsPerSecond ? 1 : most;
    mpv.mpv_set_property(handle, "vd-lavc-threads", MPV_FORMAT_INT64, &threads);
}

} // namespace velbrix
