#pragma once

#include "foundation/Result.h"
#include "platform/linux/files/FileDescriptor.h"
#include "platform/linux/media/mpv/LibMpv.h"
#include "platform/linux/media/mpv/PictureSink.h"
#include "platform/linux/media/mpv/RetiredThreads.h"

#include <QFuture>
#include <QImage>
#include <QPromise>

#include <atomic>
#include <functional>
#include <memory>
#include <mutex>
#include <optional>
#include <thread>
#include <vector>

namespace velbrix {

// Brings the pictures of a player into a sink, on a thread of its own that
// sleeps when there is nothing to paint. Called on the main thread.
class VideoRenderer {
public:
    // On the renderer's thread, with the number that begin() was given.
    using FirstPicture = std::function<void(int load)>;

    static Result<std::unique_ptr<VideoRenderer>> create(const LibMpv &mpv, mpv_handle *player,
                                                         std::unique_ptr<PictureSink> sink,
                                                         FirstPicture firstPicture);
    // Ends the player too. Returns at once; the thread is left to the list.
    static void retire(std::unique_ptr<VideoRenderer> renderer, RetiredThreads &threads);
    ~VideoRenderer();
    VideoRenderer(const VideoRenderer &) = delete;
    VideoRenderer &operator=(const VideoRenderer &) = delete;

    // Pictures from now on belong to this load.
    void begin(int load);
    void resize(QSize size);
    void repaint();
    // The picture on show, painted once more in this size.
    QFuture<Result<QImage>> copy(QSize size);

    // Pictures painted so far.
    qint64 pictures() const { return _shared->pictures; }

private:
    struct Orders {
        bool stops = false;
        bool isUpdated = false;
        bool repaints = false;
        std::optional<int> load;
        std::optional<QSize> size;
        std::vector<std::pair<QSize, std::shared_ptr<QPromise<Result<QImage>>>>> copies;
    };
    // What the main thread and libmpv tell the renderer's thread.
    struct Shared {
        template <typename Change> void order(Change change);
        Orders take();

        FileDescriptor wakeUp; // of an eventfd
        std::mutex lock;
        Orders orders;
        std::atomic<qint64> pictures = 0;
    };
    class Loop;

    VideoRenderer(std::shared_ptr<Shared> shared, std::unique_ptr<Loop> loop);

    const std::shared_ptr<Shared> _shared;
    std::shared_ptr<std::binary_semaphore> _hasEnded = std::make_shared<std::binary_semaphore>(0);
    std::thread _thread;
};

} // namespace velbrix
