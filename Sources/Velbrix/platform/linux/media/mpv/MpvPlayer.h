#pragma once

#include "foundation/FileThreads.h"
#include "platform/VideoSurface.h"
#include "platform/linux/media/mpv/LibMpv.h"
#include "platform/linux/media/mpv/MpvEventQueue.h"

#include <QSize>
#include <QString>

#include <functional>
#include <memory>
#include <optional>

namespace velbrix {

// The pictures that the player hands out.
struct PictureFormat {
    QSize stored;
    QSize shown; // with square pixels
    bool isPlanar420 = false;

    bool operator==(const PictureFormat &) const = default;
};

// What plays a file endlessly; its pictures go to a VideoRenderer. Opens
// nothing but the one local file. Paused at first. Main thread; does not wait
// for the player's threads.
class MpvPlayer {
public:
    // Called on the main thread from the event loop; they may not destroy the
    // player. Nothing of an earlier load comes after a newer one.
    struct Events {
        std::function<void(int load)> starting; // before its first picture
        std::function<void(const PictureFormat &)> formatChanged;
        std::function<void(Failure)> failed;
    };

    // The files outlive the player.
    static Result<std::unique_ptr<MpvPlayer>> create(FileThreads &files, Events events);
    // The handle must have been released.
    ~MpvPlayer();
    MpvPlayer(const MpvPlayer &) = delete;
    MpvPlayer &operator=(const MpvPlayer &) = delete;

    const LibMpv &library() const { return _mpv; }
    mpv_handle *handle() const { return _handle; }
    // Ends the events; who calls ends the player.
    mpv_handle *release();

    // Loads are numbered from 1.
    int load(const QString &path);
    bool isLoaded() const { return !_path.isEmpty(); }

    void setPaused(bool isPaused);
    void setRate(double rate);
    void setVolume(double volume);
    void setGravity(VideoGravity gravity);
    // Whether pictures are painted as large as they are stored.
    void setScaling(bool isNeeded);

private:
    MpvPlayer(FileThreads &files, const LibMpv &mpv, mpv_handle *handle, Events events);
    static bool start(const LibMpv &mpv, mpv_handle *handle);
    // Nothing when another load has overtaken this one or the player has gone.
    QCoro::Task<std::optional<Result<void>>> look(int load);
    QCoro::Task<> open(int load);
    QCoro::Task<> explainEnd(int load, QString otherwise);
    void handleEvent(const mpv_event &event);
    void resumed(const mpv_event_property &position);
    void prepare();
    void readFormat(const mpv_event_property &property);
    void ended(const mpv_event_end_file &end);
    void fail(const QString &why);
    void stop();
    void set(const char *name, const char *value);
    void set(const char *name, double value);
    void setFlag(const char *name, bool value);

    FileThreads &_files;
    const LibMpv &_mpv;
    mpv_handle *_handle;
    const Events _events;
    const std::shared_ptr<const bool> _isAlive = std::make_shared<bool>(true);
    QString _path;
    int _load = 0;
    std::optional<qint64> _entry;   // of this load in the player's list
    std::optional<qint64> _started; // the entry that the player is at
    PictureFormat _format;
    bool _isPaused = true;
    bool _isAudible = false;
    std::optional<bool> _isScaling;
    MpvEventQueue _queue;
};

} // namespace velbrix
