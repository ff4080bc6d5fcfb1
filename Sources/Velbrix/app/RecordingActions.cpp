#include "app/RecordingActions.h"

#include "app/PrivacyManager.h"
#include "capture/ScreenRecorderController.h"

#include <QPointer>

#include <utility>

namespace velbrix {

RecordingActions::RecordingActions(ScreenRecorderController &recorder, PrivacyManager &privacy,
                                   QObject *parent)
    : QObject(parent), _recorder(recorder), _privacy(privacy)
{
}

void RecordingActions::startFromPanel(const RecordingWishes &wishes)
{
    guarded(featurePrivacyNotice(PrivacyConsentKind::screenRecording),
            [this, wishes] { _recorder.start(wishes); });
}

void RecordingActions::toggleFromPanel()
{
    if (!stopIfRunning())
        startFromPanel();
}

void RecordingActions::toggleQuickly()
{
    if (!stopIfRunning())
        guarded(quickRecordingNotice(), [this] { _recorder.start({.mode = RecordMode::fullScreen}); });
}

void RecordingActions::setSystemAudio(bool on)
{
    if (on)
        _privacy.guard(featurePrivacyNotice(PrivacyConsentKind::systemAudio),
                       [this] { _recorder.preferences().setRecordSystemAudio(true); });
    else
        _recorder.preferences().setRecordSystemAudio(false);
}

void RecordingActions::setMicrophone(bool on)
{
    if (!on) {
        _recorder.preferences().setRecordMicrophone(false);
        return;
    }
    _privacy.guard(featurePrivacyNotice(PrivacyConsentKind::microphone), [this] {
        const QPointer self(this);
        _recorder.access().requestMicPermission().then([self](bool granted) {
            if (self && granted)
                self->_recorder.preferences().setRecordMicrophone(true);
        });
    });
}

void RecordingActions::guarded(const FeaturePrivacyNotice &notice, std::function<void()> start)
{
    if (_privacy.requireStatement())
        _privacy.guard(notice, std::move(start));
}

bool RecordingActions::stopIfRunning()
{
    if (!_recorder.isRecording() && !_recorder.isProcessing())
        return false;
    _recorder.stop();
    return true;
}

} // namespace velbrix
