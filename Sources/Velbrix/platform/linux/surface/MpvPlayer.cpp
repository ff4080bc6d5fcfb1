#include "platform/linux/surface/MpvPlayer.h"

#include "platform/linux/movie/VideoFile.h"
#include "platform/linux/surface/MpvNode.h"

#include <QFile>
#include <QFileInfo>
#include <QThread>

#include <algorithm>
#include <array>
#include <cmath>
#include <utility>

using namespace Qt::StringLiterals;

namespace velbrix {

namespace {

constexpr qint64 largestPixels = qint64{2560} * 1440;
// What one thread decodes with room to spare.
constexpr qint64 pixelsPerSecond = qint64{1920} * 1088 * 31;

struct Option {
    const char *name;
    const char *value;
};

constexpr std::array<Option, 41> options{{
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
    // Eight seconds ahead, whatever the bit rate.
    {"cache", "no"},
    {"demuxer-thread", "yes"},
    {"demuxer-readahead-secs", "8"},
    {"demuxer-max-bytes", "32MiB"},
    {"demuxer-max-back-bytes", "0"},
    {"demuxer-donate-buffer", "no"},
    // Measured the cheapest that look right, see setScaling().
    {"zimg-scaler", "bilinear"},
    {"zimg-scaler-chroma", "bilinear"},
    {"zimg-threads", "1"},
    {"sws-scaler", "fast-bilinear"},
    {"sws-fast", "yes"},
}};

// Containers of single files. Others name further files or addresses.
constexpr const char *containers = "mov,mp4,matroska,webm,avi,asf,flv,mpegts,mpeg,ogg";

mpv_node text(const char *value)
{
    mpv_node node{};
    node.format = MPV_FORMAT_STRING;
    node.u.string = const_cast<char *>(value);
    return node;
}

template <std::size_t count>
void command(const LibMpv &mpv, mpv_handle *handle, std::uint64_t number,
             const std::array<const char *, count> &words)
{
    std::array<mpv_node, count> values{};
    std::ranges::transform(words, values.begin(), text);
    mpv_node_list list{static_cast<int>(count), values.data(), nullptr};
    mpv_node node{};
    node.format = MPV_FORMAT_NODE_ARRAY;
    node.u.list = &list;
    mpv.mpv_command_node_async(handle, number, &node);
}

bool isVideo(const mpv_node &track)
{
    return nodeText(track, "type") == "video" && !nodeFlag(track, "albumart");
}

} // namespace

Result<std::unique_ptr<MpvPlayer>> MpvPlayer::create(Events events)
{
    const auto mpv = libMpv();
    if (!mpv)
        return std::unexpected(mpv.error());
    mpv_handle *const handle = (*mpv)->mpv_create();
    if (!handle)
        return failure(u"无法启动视频播放器"_s);
    if (!configure(**mpv, handle)) {
        (*mpv)->mpv_terminate_destroy(handle);
        return failure(u"无法启动视频播放器"_s);
    }
    return std::unique_ptr<MpvPlayer>(new MpvPlayer(**mpv, handle, std::move(events)));
}

bool MpvPlayer::configure(const LibMpv &mpv, mpv_handle *handle)
{
    // An option that a newer version has dropped is no reason to show nothing;
    // one that keeps files apart from the rest of the world is.
    for (const Option &option : options)
        mpv.mpv_set_option_string(handle, option.name, option.value);
    std::array<char *, 2> keys{const_cast<char *>("format_whitelist"),
                               const_cast<char *>("protocol_whitelist")};
    std::array<mpv_node, 2> values{text(containers), text("file")};
    mpv_node_list list{2, values.data(), keys.data()};
    mpv_node map{};
    map.format = MPV_FORMAT_NODE_MAP;
    map.u.list = &list;
    return mpv.mpv_set_option(handle, "demuxer-lavf-o", MPV_FORMAT_NODE, &map) >= 0 &&
           mpv.mpv_set_option_string(handle, "demuxer", "lavf") >= 0 && mpv.mpv_initialize(handle) >= 0 &&
           mpv.mpv_hook_add(handle, 0, "on_preloaded", 0) >= 0 &&
           mpv.mpv_observe_property(handle, 0, "video-out-params", MPV_FORMAT_NODE) >= 0;
}

MpvPlayer::MpvPlayer(const LibMpv &mpv, mpv_handle *handle, Events events)
    : _mpv(mpv), _handle(handle), _events(std::move(events))
{
    const auto woken = [](void *player) {
        auto *const self = static_cast<MpvPlayer *>(player);
        if (!self->_isDraining.exchange(true))
            self->_relay->post([self] { self->drain(); });
    };
    _mpv.mpv_set_wakeup_callback(_handle, woken, this);
}

MpvPlayer::~MpvPlayer() = default;

mpv_handle *MpvPlayer::release()
{
    _mpv.mpv_set_wakeup_callback(_handle, nullptr, nullptr);
    _relay->close();
    return std::exchange(_handle, nullptr);
}

int MpvPlayer::load(const QString &path)
{
    // Absolute, so that nothing in the name is taken for a protocol or an option.
    _path = QFileInfo(path).absoluteFilePath();
    ++_load;
    _entry.reset();
    if (const auto usable = checkVideoFile(_path); !usable) {
        stop();
        _relay->post([this, why = usable.error().message, load = _load] {
            if (load == _load && isLoaded())
                fail(why);
        });
        return _load;
    }
    const QByteArray name = QFile::encodeName(_path);
    command(_mpv, _handle, static_cast<std::uint64_t>(_load),
            std::array<const char *, 3>{"loadfile", name.constData(), "replace"});
    return _load;
}

void MpvPlayer::unload()
{
    ++_load;
    _path.clear();
    stop();
}

void MpvPlayer::stop()
{
    _entry.reset();
    command(_mpv, _handle, 0, std::array<const char *, 1>{"stop"});
}

void MpvPlayer::setPaused(bool isPaused)
{
    setFlag("pause", isPaused);
}

void MpvPlayer::setRate(double rate)
{
    set("speed", rate);
}

// The player's scale is cubic, ours is the factor of the samples. Without a
// sound track it opens no stream.
void MpvPlayer::setVolume(double volume)
{
    set("volume", 100 * std::cbrt(std::clamp(volume, 0.0, 1.0)));
    set("aid", volume > 0 ? "auto" : "no");
}

void MpvPlayer::setGravity(VideoGravity gravity)
{
    setFlag("keepaspect", gravity != VideoGravity::stretch);
    set("panscan", gravity == VideoGravity::crop ? 1.0 : 0.0);
}

// Of the two converters one is twice as fast where nothing is scaled, the
// other where something is.
void MpvPlayer::setScaling(bool isNeeded)
{
    const bool isScaling = isNeeded || !_format.isPlanar420;
    if (std::exchange(_isScaling, isScaling) != isScaling)
        setFlag("sws-allow-zimg", isScaling);
}

void MpvPlayer::set(const char *name, const char *value)
{
    _mpv.mpv_set_property_async(_handle, 0, name, MPV_FORMAT_STRING, &value);
}

void MpvPlayer::set(const char *name, double value)
{
    _mpv.mpv_set_property_async(_handle, 0, name, MPV_FORMAT_DOUBLE, &value);
}

void MpvPlayer::setFlag(const char *name, bool value)
{
    int flag = value ? 1 : 0;
    _mpv.mpv_set_property_async(_handle, 0, name, MPV_FORMAT_FLAG, &flag);
}

void MpvPlayer::drain()
{
    _isDraining = false;
    for (;;) {
        const mpv_event *const event = _mpv.mpv_wait_event(_handle, 0);
        if (event->event_id == MPV_EVENT_NONE)
            return;
        handleEvent(*event);
    }
}

void MpvPlayer::handleEvent(const mpv_event &event)
{
    switch (event.event_id) {
    case MPV_EVENT_COMMAND_REPLY:
        if (event.reply_userdata != static_cast<std::uint64_t>(_load) || !isLoaded())
            return;
        if (event.error >= 0)
            _entry =
                nodeNumber(static_cast<const mpv_event_command *>(event.data)->result, "playlist_entry_id");
        else
            fail(u"无法打开文件"_s);
        return;
    case MPV_EVENT_START_FILE:
        _started = static_cast<const mpv_event_start_file *>(event.data)->playlist_entry_id;
        return;
    case MPV_EVENT_HOOK:
        if (_entry && _started == _entry)
            prepare();
        _mpv.mpv_hook_continue(_handle, static_cast<const mpv_event_hook *>(event.data)->id);
        return;
    case MPV_EVENT_END_FILE:
        ended(*static_cast<const mpv_event_end_file *>(event.data));
        return;
    case MPV_EVENT_PROPERTY_CHANGE:
        readFormat(*static_cast<const mpv_event_property *>(event.data));
        return;
    default:
        return;
    }
}

// The file is open and the player waits for us before it decodes.
void MpvPlayer::prepare()
{
    mpv_node tracks{};
    if (_mpv.mpv_get_property(_handle, "track-list", MPV_FORMAT_NODE, &tracks) < 0)
        return fail(u"无法打开文件"_s);
    const auto all = nodeList(tracks);
    const auto video = std::ranges::find_if(all, isVideo);
    if (video == all.end()) {
        fail(u"视频中没有画面轨道"_s);
    } else {
        tuneDecoder(*video);
        _events.starting(_load);
    }
    _mpv.mpv_free_node_contents(&tracks);
}

void MpvPlayer::tuneDecoder(const mpv_node &track)
{
    const qint64 pixels = nodeNumber(track, "demux-w") * nodeNumber(track, "demux-h");
    const qint64 rate = std::max<qint64>(nodeNumber(track, "demux-fps"), 25);
    int flag = pixels > largestPixels ? 1 : 0;
    _mpv.mpv_set_property(_handle, "vd-lavc-fast", MPV_FORMAT_FLAG, &flag);
    const char *skipped = pixels > largestPixels ? "nonref" : "default";
    _mpv.mpv_set_property(_handle, "vd-lavc-skiploopfilter", MPV_FORMAT_STRING, &skipped);
    // Each thread more holds pictures of its own.
    const int most = std::min(QThread::idealThreadCount(), 4);
    std::int64_t threads = pixels * rate <= pixelsPerSecond ? 1 : most;
    _mpv.mpv_set_property(_handle, "vd-lavc-threads", MPV_FORMAT_INT64, &threads);
}

void MpvPlayer::readFormat(const mpv_event_property &property)
{
    if (property.format != MPV_FORMAT_NODE)
        return;
    const mpv_node &node = *static_cast<const mpv_node *>(property.data);
    const auto size = [&node](const char *width, const char *height) {
        return QSize(static_cast<int>(nodeNumber(node, width)), static_cast<int>(nodeNumber(node, height)));
    };
    const PictureFormat format{size("w", "h"), size("dw", "dh"), nodeText(node, "pixelformat") == "yuv420p"};
    if (format.shown.isEmpty() || format == std::exchange(_format, format))
        return;
    _events.formatChanged(format);
}

void MpvPlayer::ended(const mpv_event_end_file &end)
{
    if (!_entry || end.playlist_entry_id != *_entry)
        return;
    if (const auto usable = checkVideoFile(_path); !usable)
        return fail(usable.error().message);
    switch (end.error) {
    case MPV_ERROR_LOADING_FAILED:
        return fail(u"无法打开文件"_s);
    case MPV_ERROR_UNKNOWN_FORMAT:
        return fail(u"不是可以识别的视频文件"_s);
    case MPV_ERROR_NOTHING_TO_PLAY:
        return fail(u"无法解码视频画面"_s);
    default:
        return fail(u"视频无法继续播放"_s);
    }
}

void MpvPlayer::fail(const QString &why)
{
    stop();
    _path.clear();
    _events.failed(Failure{why});
}

} // namespace velbrix
