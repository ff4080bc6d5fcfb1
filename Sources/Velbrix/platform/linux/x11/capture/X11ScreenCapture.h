#pragma once

#include "platform/ScreenCapture.h"
#include "platform/linux/x11/X11Connection.h"
#include "platform/linux/x11/capture/X11CaptureSession.h"

namespace velbrix {

// The X11 screen of $DISPLAY. Every operation has a connection of its own, so
// that a slow or lost server stops nothing else.
class X11ScreenCapture final : public ScreenCapture {
public:
    // Recordings are written with recorders of the factory's making. Abilities
    // of the server that are not allowed count as absent. An obstacle is what
    // every look at the screen fails with, since the server would show black.
    explicit X11ScreenCapture(MovieRecorderFactory makeRecorder, const X11Abilities &allowed = {},
                              QString obstacle = {});

    CaptureFeatures features() const override;
    QCoro::Task<Result<ShareableContent>> shareableContent() override;
    QCoro::Task<Result<QImage>> windowImage(quint32 windowId, QSize size) override;
    Result<CaptureGeometry> geometry(const CaptureFilter &filter) override;
    Result<std::unique_ptr<CaptureSession>> makeSession(const CaptureFilter &filter,
                                                        const StreamConfiguration &configuration,
                                                        CaptureObserver observer) override;

private:
    MovieRecorderFactory _makeRecorder;
    X11Abilities _allowed;
    const QString _obstacle;
};

} // namespace velbrix
