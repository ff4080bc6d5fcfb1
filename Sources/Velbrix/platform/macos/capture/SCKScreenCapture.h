#pragma once

#include "platform/ScreenCapture.h"

#include <memory>

namespace velbrix {

// ScreenCaptureKit. Filters name windows and displays of the shareable content
// that was fetched last.
class SCKScreenCapture final : public ScreenCapture {
public:
    SCKScreenCapture();
    ~SCKScreenCapture() override;

    CaptureFeatures features() const override;
    QCoro::Task<Result<ShareableContent>> shareableContent() override;
    QCoro::Task<Result<QImage>> windowImage(quint32 windowId, QSize size) override;

    Result<CaptureGeometry> geometry(const CaptureFilter &filter) override;
    Result<std::unique_ptr<CaptureSession>> makeSession(const CaptureFilter &filter,
                                                        const StreamConfiguration &configuration,
                                                        CaptureObserver observer) override;

private:
    struct Shelf;
    std::shared_ptr<Shelf> _shelf;
};

} // namespace velbrix
