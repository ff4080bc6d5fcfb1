#include "platform/linux/media/mpv/VideoRenderer.h"

#include <malloc.h>
#include <poll.h>
#include <sys/eventfd.h>

#include <array>

using namespace Qt::StringLiterals;

namespace velbrix {

namespace {

Result<QImage> nothingShown()
{
    return failure(u"没有正在显示的画面"_s);
}

void answer(QPromise<Result<QImage>> &promise, Result<QImage> image)
{
    promise.addResult(std::move(image));
    promise.finish();
}

} // namespace

// Lives on the renderer's thread.
class VideoRenderer::Loop {
public:
    Loop(const LibMpv &mpv, mpv_handle *player, std::unique_ptr<PictureSink> sink, FirstPicture firstPicture,
         std::shared_ptr<Shared> shared)
        : _mpv(mpv),
          _player(player),
          _sink(std::move(sink)),
          _firstPicture(std::move(firstPicture)),
          _shared(std::move(shared))
    {
    }

    bool open()
    {
        std::array<mpv_render_param, 2> parameters{
            mpv_render_param{MPV_RENDER_PARAM_API_TYPE, const_cast<char *>(MPV_RENDER_API_TYPE_SW)},
            mpv_render_param{MPV_RENDER_PARAM_INVALID, nullptr}};
        if (_mpv.mpv_render_context_create(&_context, _player, parameters.data()) < 0)
            return false;
        const auto updated = [](void *shared) {
            static_cast<Shared *>(shared)->order([](Orders &orders) { orders.isUpdated = true; });
        };
        _mpv.mpv_render_context_set_update_callback(_context, updated, _shared.get());
        return true;
    }

    void run()
    {
        for (;;) {
            _sink->collect();
            Orders orders = _shared->take();
            if (orders.stops) {
                for (auto &[size, promise] : orders.copies)
                    answer(*promise, nothingShown());
                break;
            }
            obey(orders);
            if (_isDue)
                _isDue = !paintNext();
            for (auto &[size, promise] : orders.copies)
                answer(*promise, copy(size));
            sleep();
        }
        close();
    }

private:
    void obey(const Orders &orders)
    {
        if (orders.load) {
            _load = orders.load;
            _hasPicture = false;
        }
        if (orders.size) {
            _sink->resize(*orders.size);
            _isDue = _isDue || _hasPicture;
        }
        if (orders.repaints)
            _sink->repaint();
        if (orders.isUpdated) {
            const bool hasFrame = (_mpv.mpv_render_context_update(_context) & MPV_RENDER_UPDATE_FRAME) != 0;
            // A copy may have taken a picture that the sink has not seen.
            _isDue = _isDue || hasFrame || (std::exchange(_wasCopied, false) && _hasPicture);
        }
    }

    // False while the sink has no room.
    bool paintNext()
    {
        if (!_load) {
            skip();
            return true;
        }
        const auto canvas = _sink->next();
        if (!canvas)
            return false;
        const bool isNew = isNextNew();
        paint(*canvas, true);
        _sink->present();
        if (!isNew)
            return true;
        ++_shared->pictures;
        if (!std::exchange(_hasPicture, true))
            _firstPicture(*_load);
        return true;
    }

    bool isNextNew() const
    {
        mpv_render_frame_info info{};
        if (_mpv.mpv_render_context_get_info(_context, {MPV_RENDER_PARAM_NEXT_FRAME_INFO, &info}) < 0)
            return false;
        return (info.flags & MPV_RENDER_FRAME_INFO_PRESENT) && !(info.flags & MPV_RENDER_FRAME_INFO_REDRAW);
    }

    void paint(const PictureSink::Canvas &canvas, bool atItsTime) const
    {
        std::array<int, 2> size{canvas.size.width(), canvas.size.height()};
        std::size_t stride = canvas.stride;
        int waits = atItsTime ? 1 : 0;
        std::array<char, 5> format{"bgr0"};
        std::array<mpv_render_param, 6> parameters{
            mpv_render_param{MPV_RENDER_PARAM_SW_SIZE, size.data()},
            mpv_render_param{MPV_RENDER_PARAM_SW_FORMAT, format.data()},
            mpv_render_param{MPV_RENDER_PARAM_SW_STRIDE, &stride},
            mpv_render_param{MPV_RENDER_PARAM_SW_POINTER, canvas.bits},
            mpv_render_param{MPV_RENDER_PARAM_BLOCK_FOR_TARGET_TIME, &waits},
            mpv_render_param{MPV_RENDER_PARAM_INVALID, nullptr}};
        _mpv.mpv_render_context_render(_context, parameters.data());
    }

    // libmpv waits for every picture to be taken.
    void skip() const
    {
        int skips = 1;
        int waits = 0;
        std::array<mpv_render_param, 3> parameters{
            mpv_render_param{MPV_RENDER_PARAM_SKIP_RENDERING, &skips},
            mpv_render_param{MPV_RENDER_PARAM_BLOCK_FOR_TARGET_TIME, &waits},
            mpv_render_param{MPV_RENDER_PARAM_INVALID, nullptr}};
        _mpv.mpv_render_context_render(_context, parameters.data());
    }

    Result<QImage> copy(QSize size)
    {
        if (!_hasPicture || size.isEmpty())
            return nothingShown();
        QImage image(size, QImage::Format_RGB32);
        if (image.isNull())
            return failure(u"内存不足，无法读取画面"_s);
        paint({image.bits(), static_cast<std::size_t>(image.bytesPerLine()), size}, false);
        _wasCopied = true;
        return image;
    }

    void sleep() const
    {
        std::array<pollfd, 2> sources{pollfd{_shared->wakeUp.number(), POLLIN, 0},
                                      pollfd{_isDue ? _sink->descriptor() : -1, POLLIN, 0}};
        poll(sources.data(), sources.size(), -1);
    }

    void close()
    {
        _mpv.mpv_render_context_set_update_callback(_context, nullptr, nullptr);
        _mpv.mpv_render_context_free(_context);
        _sink.reset();
        _mpv.mpv_terminate_destroy(_player);
        // What its threads have freed lies in arenas that nobody else uses.
        malloc_trim(0);
    }

    const LibMpv &_mpv;
    mpv_handle *const _player;
    std::unique_ptr<PictureSink> _sink;
    const FirstPicture _firstPicture;
    const std::shared_ptr<Shared> _shared;
    mpv_render_context *_context = nullptr;
    std::optional<int> _load;
    bool _hasPicture = false; // of this load
    bool _isDue = false;
    bool _wasCopied = false;
};

template <typename Change> void VideoRenderer::Shared::order(Change change)
{
    {
        const std::scoped_lock guard(lock);
        change(orders);
    }
    eventfd_write(wakeUp.number(), 1);
}

VideoRenderer::Orders VideoRenderer::Shared::take()
{
    eventfd_t count = 0;
    eventfd_read(wakeUp.number(), &count);
    const std::scoped_lock guard(lock);
    return std::exchange(orders, {});
}

Result<std::unique_ptr<VideoRenderer>> VideoRenderer::create(const LibMpv &mpv, mpv_handle *player,
                                                             std::unique_ptr<PictureSink> sink,
                                                             FirstPicture firstPicture)
{
    auto shared = std::make_shared<Shared>();
    shared->wakeUp = FileDescriptor(eventfd(0, EFD_CLOEXEC | EFD_NONBLOCK));
    if (!shared->wakeUp)
        return failure(u"系统资源不足，无法播放视频"_s);
    auto loop = std::make_unique<Loop>(mpv, player, std::move(sink), std::move(firstPicture), shared);
    if (!loop->open())
        return failure(u"无法准备视频画面"_s);
    return std::unique_ptr<VideoRenderer>(new VideoRenderer(std::move(shared), std::move(loop)));
}

VideoRenderer::VideoRenderer(std::shared_ptr<Shared> shared, std::unique_ptr<Loop> loop)
    : _shared(std::move(shared)), _thread([running = std::move(loop), hasEnded = _hasEnded] {
          running->run();
          hasEnded->release();
      })
{
}

VideoRenderer::~VideoRenderer() = default;

void VideoRenderer::retire(std::unique_ptr<VideoRenderer> renderer, RetiredThreads &threads)
{
    renderer->_shared->order([](Orders &orders) { orders.stops = true; });
    threads.add(std::move(renderer->_thread), renderer->_hasEnded);
}

void VideoRenderer::begin(int load)
{
    _shared->order([load](Orders &orders) { orders.load = load; });
}

void VideoRenderer::resize(QSize size)
{
    _shared->order([size](Orders &orders) { orders.size = size; });
}

void VideoRenderer::repaint()
{
    _shared->order([](Orders &orders) { orders.repaints = true; });
}

QFuture<Result<QImage>> VideoRenderer::copy(QSize size)
{
    auto promise = std::make_shared<QPromise<Result<QImage>>>();
    promise->start();
    const QFuture<Result<QImage>> future = promise->future();
    _shared->order([&](Orders &orders) { orders.copies.emplace_back(size, std::move(promise)); });
    return future;
}

} // namespace velbrix
