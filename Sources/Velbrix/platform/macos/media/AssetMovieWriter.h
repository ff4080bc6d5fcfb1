#pragma once

#include "platform/CaptureLedger.h"
#include "platform/CaptureSession.h"

#import <CoreMedia/CoreMedia.h>

#include <functional>
#include <memory>

namespace velbrix {

// Objective-C++ only: the MPEG-4 file that this program writes from the
// samples of a stream. open() and tracks() on the main thread before the first
// sample; everything after that on the sample queue.
class AssetMovieWriter {
public:
    // Removes what is at the path. The file holds fragments while it grows, so
    // that a killed program leaves it playable. `failed` is called once, on the
    // sample queue, when the file can take nothing more (a full disk, say).
    static Result<std::shared_ptr<AssetMovieWriter>> open(const MovieSettings &settings,
                                                          std::shared_ptr<CaptureLedger> ledger,
                                                          std::function<void(Failure)> failed);
    ~AssetMovieWriter();

    MovieTracks tracks() const;

    void appendPicture(CMSampleBufferRef sample);
    void appendSystemAudio(CMSampleBufferRef sample);
    void appendMicrophone(CMSampleBufferRef sample);
    // The picture did not change until then: it still counts as recorded time.
    void notePictureUnchanged(CMTime until);

    // Once. Samples that come later are dropped. The answer comes on any thread.
    void finish(std::function<void(Result<void>)> finished);

private:
    struct Private;
    explicit AssetMovieWriter(std::unique_ptr<Private> d);
    std::unique_ptr<Private> _d;
};

} // namespace velbrix
