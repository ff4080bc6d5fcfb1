#include "platform/macos/media/AVMovieFiles.h"

#include "platform/macos/media/AssetBridge.h"
#include "platform/macos/media/RepairFile.h"
#include "platform/macos/system/Completion.h"
#include "platform/macos/system/FoundationBridge.h"

#include <QFile>

#include <memory>

using namespace Qt::StringLiterals;

namespace velbrix {
namespace {

void countAudioTracks(AVAsset *asset, MovieFacts facts, Completion<Result<MovieFacts>> inspected)
{
    [asset loadTracksWithMediaType:AVMediaTypeAudio
                 completionHandler:^(NSArray<AVAssetTrack *> *tracks, NSError *) {
                     MovieFacts complete = facts;
                     complete.audioTracks = static_cast<int>(tracks.count);
                     inspected.answer(complete);
                 }];
}

void countTracks(AVAsset *asset, MovieFacts facts, Completion<Result<MovieFacts>> inspected)
{
    [asset loadTracksWithMediaType:AVMediaTypeVideo
                 completionHandler:^(NSArray<AVAssetTrack *> *tracks, NSError *) {
                     MovieFacts withVideo = facts;
                     withVideo.hasVideo = tracks.count > 0;
                     countAudioTracks(asset, withVideo, inspected);
                 }];
}

} // namespace

QCoro::Task<Result<MovieFacts>> AVMovieFiles::inspect(const QString path)
{
    const Completion<Result<MovieFacts>> inspected;
    AVURLAsset *asset = assetAt(path);
    [asset loadValuesAsynchronouslyForKeys:@[ @"playable", @"duration" ]
                         completionHandler:^{
                             MovieFacts facts;
                             facts.isPlayable = isLoaded(asset, @"playable") && asset.isPlayable;
                             facts.duration = loadedDuration(asset);
                             countTracks(asset, facts, inspected);
                         }];
    return answerOf(inspected);
}

QCoro::Task<Result<void>> AVMovieFiles::repair(const QString path)
{
    const Completion<Result<void>> repaired;
    AVAssetExportSession *session =
        [[AVAssetExportSession alloc] initWithAsset:assetAt(path) presetName:AVAssetExportPresetPassthrough];
    if (!session) {
        repaired.answer(failure(u"系统无法读取这个文件"_s));
        return answerOf(repaired);
    }
    const QString temporary = repairPath(path);
    session.outputURL = [NSURL fileURLWithPath:toNSString(temporary)];
    NSException *thrown = caughtException(^{
        session.outputFileType = AVFileTypeMPEG4;
        [session exportAsynchronouslyWithCompletionHandler:^{
            if (session.status == AVAssetExportSessionStatusCompleted) {
                repaired.answer(replaceFile(path, temporary));
                return;
            }
            QFile::remove(temporary);
            repaired.answer(std::unexpected(toFailure(session.error)));
        }];
    });
    if (thrown)
        repaired.answer(std::unexpected(toFailure(thrown)));
    return answerOf(repaired);
}

} // namespace velbrix
