#include "platform/linux/media/mpv/MpvPlayer.h"

#include "platform/linux/media/libav/VideoFile.h"
#include "platform/linux/media/mpv/MpvNode.h"
#include "platform/linux/media/mpv/MpvOptions.h"

#include <QFile>
#include <QFileInfo>

#include <algorithm>
#include <array>
#include <cmath>
#include <utility>

using namespace Qt::StringLiterals;

namespace velbrix {

namespace {

const QString cannotOpen = u"无法打开文件"_s;

constexpr std::uint64_t positionQuestion = 1; // properties and commands count apart
constexpr double afterTheLoop = 2;            // seconds

template <std::size_t count>
void command(const LibMpv &mpv, mpv_handle *handle, std::uint64_t number,
             const std::array<const char *, count> &words)
{
    std::array<mpv_node, count> values{};
    std::ranges::transform(words, values.begin(), textNode);
    mpv_node_list list{static_cast<int>(count), values.data(), nullptr};
    mpv_node node{};
    node.format = MPV_FORMAT_NODE_ARRAY;
    node.u.list = &list;
    mpv.mpv_command_node_async(handle, number, &node);
}

QString wordsOf(int error)
{
    switch (error) {
    case MPV_ERROR_LOADING_FAILED:
        return cannotOpen;
    case MPV_ERROR_UNKNOWN_FORMAT:
        return u"不是可以识别的视频文件"_s;
    case MPV_ERROR_NOTHING_TO_PLAY:
        return u"无法解码视频画面"_s;
    default:
        return u"视频无法继续播放"_s;
    }
}

bool isVideo(const mpv_node &track)
{
    return nodeText(track, "type") == "video" && !nodeFlag(track, "albumart");
}

} // namespace

Result<std::unique_ptr<MpvPlayer>> MpvPlayer::create(FileThreads &files, Events events)
{
    const auto mpv = libMpv();
    if (!mpv)
        return std::unexpected(mpv.error());
    mpv_handle *const handle = (*mpv)->mpv_create();
    if (!handle)
        return failure(u"无法启动视频播放器"_s);
    if (!setMpvOptions(**mpv, handle) || !start(**mpv, handle)) {
        (*mpv)->mpv_terminate_destroy(handle);
        return failure(u"无法启动视频播放器"_s);
    }
    return std::unique_ptr<MpvPlayer>(new MpvPlayer(files, **mpv, handle, std::move(events)));
}

bool MpvPlayer::start(const LibMpv &mpv, mpv_handle *handle)
{
    return mpv.mpv_initialize(handle) >= 0 && mpv.mpv_hook_add(handle, 0, "on_preloaded", 0) >= 0 &&
           mpv.mpv_observe_property(handle, 0, "video-out-params", MPV_FORMAT_NODE) >= 0;
}

MpvPlayer::MpvPlayer(FileThreads &files, const LibMpv &mpv, mpv_handle *handle, Events events)
    : _files(files),
      _mpv(mpv),
      _handle(handle),
      _events(std::move(events)),
      _queue(mpv, handle, [this](const mpv_event &event) { handleEvent(event); })
{
}

MpvPlayer::~MpvPlayer() = default;

mpv_handle *MpvPlayer::release()
{
    _queue.close();
    return std::exchange(_handle, nullptr);
}

int MpvPlayer::load(const QString &path)
{
    // Absolute, so that nothing in the name is taken for a protocol or an option.
    _path = QFileInfo(path).absoluteFilePath();
    ++_load;
    _entry.reset();
    open(_load);
    return _load;
}

QCoro::Task<std::optional<Result<void>>> MpvPlayer::look(int load)
{
    const std::weak_ptr isAlive = _isAlive;
    auto looking = _files.run([path = _path] { return checkVideoFile(path); });
    const auto looked = co_await looking;
    if (isAlive.expired() || load != _load || !isLoaded())
        co_return std::nullopt;
    co_return looked ? *looked : Result<void>(failure(silentDiskWords));
}

// The player does not get a file that would stop its threads for good.
QCoro::Task<> MpvPlayer::open(int load)
{
    const auto usable = co_await look(load);
    if (!usable)
        co_return;
    if (!*usable) {
        fail(usable->error().message);
        co_return;
    }
    const QByteArray name = QFile::encodeName(_path);
    command(_mpv, _handle, static_cast<std::uint64_t>(load),
            std::array<const char *, 3>{"loadfile", name.constData(), "replace"});
}

void MpvPlayer::stop()
{
    _entry.reset();
    command(_mpv, _handle, 0, std::array<const char *, 1>{"stop"});
}

void MpvPlayer::setPaused(bool isPaused)
{
    setFlag("pause", isPaused);
    if (std::exchange(_isPaused, isPaused) && !isPaused && _isAudible)
        _mpv.mpv_get_property_async(_handle, positionQuestion, "time-pos", MPV_FORMAT_DOUBLE);
}

// Where a pause comes while the video has begun again and the end of its sound is
// still to be heard, libmpv 0.35 waits for that end for ever: the sound server does
// not play what is too little. Setting it to its own position begins the sound anew.
void MpvPlayer::resumed(const mpv_event_property &position)
{
    if (position.format == MPV_FORMAT_DOUBLE && *static_cast<const double *>(position.data) < afterTheLoop)
        command(_mpv, _handle, 0, std::array<const char *, 3>{"seek", "0", "relative+exact"});
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
    _isAudible = volume > 0;
    set("aid", _isAudible ? "auto" : "no");
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
    _mpv.mpv_set_property_async(_handle, 0, name, MPV_FORMAT_STRING, static_cast<void *>(&value));
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
            fail(cannotOpen);
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
    case MPV_EVENT_GET_PROPERTY_REPLY:
        if (event.error >= 0 && event.reply_userdata == positionQuestion)
            resumed(*static_cast<const mpv_event_property *>(event.data));
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
        return fail(cannotOpen);
    const auto all = nodeList(tracks);
    const auto video = std::ranges::find_if(all, isVideo);
    if (video == all.end()) {
        fail(u"视频中没有画面轨道"_s);
    } else {
        tuneMpvDecoder(_mpv, _handle, *video);
        _events.starting(_load);
    }
    _mpv.mpv_free_node_contents(&tracks);
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
    explainEnd(_load, wordsOf(end.error));
}

QCoro::Task<> MpvPlayer::explainEnd(int load, QString otherwise)
{
    const auto usable = co_await look(load);
    if (usable)
        fail(*usable ? otherwise : usable->error().message);
}

void MpvPlayer::fail(const QString &why)
{
    stop();
    _path.clear();
    _events.failed(Failure{why});
}

} // namespace velbrix
