#include "platform/macos/media/FrameSearch.h"

#include "platform/macos/desktop/PictureBridge.h"
#include "platform/macos/system/Completion.h"
#include "platform/macos/system/FoundationBridge.h"

#include <utility>

using namespace Qt::StringLiterals;

namespace velbrix {
namespace {

CMTime oneSecond()
{
    return CMTimeMake(1, 1);
}

// The search can be cancelled until it is answered.
QCoro::Task<Result<QImage>> answerOrCancelled(Completion<Result<QImage>> found,
                                              [[maybe_unused]] Observation cancelling)
{
    co_return co_await answerOf(found);
}

} // namespace

FrameSpan FrameSpan::from(CMTime at)
{
    // The first pictures of some files come a little after their beginning.
    return {at, kCMTimeZero, oneSecond()};
}

FrameSpan FrameSpan::around(CMTime at)
{
    return {at, oneSecond(), oneSecond()};
}

QCoro::Task<Result<QImage>> searchFrame(AVAsset *asset, FrameSpan span, QSize bound,
                                        Cancellation cancellation)
{
    const Completion<Result<QImage>> found;
    AVAssetImageGenerator *generator = [[AVAssetImageGenerator alloc] initWithAsset:asset];
    generator.appliesPreferredTrackTransform = YES;
    generator.maximumSize = CGSizeMake(bound.width(), bound.height());
    generator.requestedTimeToleranceBefore = span.before;
    generator.requestedTimeToleranceAfter = span.after;
    [generator generateCGImageAsynchronouslyForTime:span.at
                                  completionHandler:^(CGImageRef image, CMTime, NSError *error) {
                                      // The generator must live as long as it works.
                                      (void)generator;
                                      const QImage picture = toQImage(image);
                                      if (picture.isNull())
                                          found.answer(std::unexpected(toFailure(error)));
                                      else
                                          found.answer(picture);
                                  }];
    return answerOrCancelled(found, cancellation.onCancel([generator, found] {
        [generator cancelAllCGImageGeneration];
        found.answer(failure(u"已取消"_s));
    }));
}

} // namespace velbrix
