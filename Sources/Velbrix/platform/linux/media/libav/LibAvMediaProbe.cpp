#include "platform/linux/media/libav/LibAvMediaProbe.h"

#include "platform/linux/media/libav/VideoInput.h"
#include "platform/linux/media/libav/VideoPicture.h"

#include <QCoroFuture>
#include <QtConcurrent/QtConcurrentRun>

namespace velbrix {
namespace {

Result<VideoFacts> findFacts(const QString &path, const Cancellation &ended)
{
    const WorkLimit limit(ended, Cancellation());
    const auto input = VideoInput::open(path, limit);
    if (!input)
        return std::unexpected(input.error());
    return input->facts();
}

Result<QImage> findPicture(const QString &path, double seconds, QSize bound, const Cancellation &ended,
                           const Cancellation &cancelled)
{
    const WorkLimit limit(ended, cancelled);
    auto input = VideoInput::open(path, limit);
    if (!input)
        return std::unexpected(input.error());
    return videoPicture(*input, seconds, bound, limit);
}

} // namespace

LibAvMediaProbe::LibAvMediaProbe()
{
    _factThreads.setMaxThreadCount(1);
    _pictureThreads.setMaxThreadCount(2);
}

LibAvMediaProbe::~LibAvMediaProbe()
{
    _ended.cancel();
}

QCoro::Task<Result<VideoFacts>> LibAvMediaProbe::facts(const QString path)
{
    const QFuture<Result<VideoFacts>> found = QtConcurrent::run(&_factThreads, findFacts, path, _ended);
    co_return co_await found;
}

QCoro::Task<Result<QImage>> LibAvMediaProbe::frame(const QString path, double seconds, QSize bound,
                                                   Cancellation cancellation)
{
    const QFuture<Result<QImage>> found =
        QtConcurrent::run(&_pictureThreads, findPicture, path, seconds, bound, _ended, cancellation);
    co_return co_await found;
}

} // namespace velbrix
