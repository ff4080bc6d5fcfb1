#include "platform/macos/media/AVMediaProbe.h"

#include "platform/macos/media/AssetBridge.h"
#include "platform/macos/media/FrameSearch.h"
#include "platform/macos/media/TrackGeometry.h"
#include "platform/macos/media/VideoGeometry.h"
#include "platform/macos/system/Completion.h"
#include "platform/macos/system/FoundationBridge.h"

#include <QFileInfo>

#include <utility>

namespace velbrix {
namespace {

using Probed = Completion<Result<VideoFacts>>;

Result<VideoFacts> trackFacts(AVAssetTrack *track)
{
    NSError *error = nil;
    if ([track statusOfValueForKey:@"naturalSize" error:&error] != AVKeyValueStatusLoaded)
        return std::unexpected(toFailure(error));
    VideoFacts facts;
    facts.hasVideo = true;
    facts.size =
        shownSize(naturalSize(track), isLoaded(track, @"preferredTransform") ? turn(track) : QTransform());
    if (isLoaded(track, @"nominalFrameRate"))
        facts.framesPerSecond = static_cast<double>(track.nominalFrameRate);
    return facts;
}

void addDuration(AVAsset *asset, VideoFacts facts, Probed probed)
{
    [asset loadValuesAsynchronouslyForKeys:@[ @"duration" ]
                         completionHandler:^{
                             VideoFacts complete = facts;
                             complete.duration = loadedDuration(asset);
                             probed.answer(complete);
                         }];
}

void probeTrack(AVAsset *asset, AVAssetTrack *track, Probed probed)
{
    [track loadValuesAsynchronouslyForKeys:@[ @"naturalSize", @"preferredTransform", @"nominalFrameRate" ]
                         completionHandler:^{
                             const Result<VideoFacts> facts = trackFacts(track);
                             if (facts)
                                 addDuration(asset, *facts, probed);
                             else
                                 probed.answer(facts);
                         }];
}

} // namespace

QCoro::Task<Result<bool>> AVMediaProbe::isFile(const QString path)
{
    const auto found = co_await _looks.run([path] { return QFileInfo(path).isFile(); });
    co_return found ? Result<bool>(*found) : failure(silentDiskWords);
}

QCoro::Task<Result<VideoFacts>> AVMediaProbe::facts(const QString path)
{
    const Probed probed;
    AVURLAsset *asset = assetAt(path);
    [asset loadTracksWithMediaType:AVMediaTypeVideo
                 completionHandler:^(NSArray<AVAssetTrack *> *tracks, NSError *error) {
                     if (!tracks)
                         probed.answer(std::unexpected(toFailure(error)));
                     else if (tracks.count == 0)
                         probed.answer(VideoFacts{});
                     else
                         probeTrack(asset, tracks[0], probed);
                 }];
    return answerOf(probed);
}

QCoro::Task<Result<QImage>> AVMediaProbe::frame(const QString path, double seconds, QSize bound,
                                                Cancellation cancellation)
{
    const FrameSpan span = FrameSpan::from(CMTimeMakeWithSeconds(seconds, 600));
    return searchFrame(assetAt(path), span, bound, std::move(cancellation));
}

} // namespace velbrix
