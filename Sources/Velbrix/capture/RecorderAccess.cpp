#include "capture/RecorderAccess.h"

#include "capture/RecorderLog.h"
#include "foundation/Log.h"
#include "platform/ScreenCapture.h"

#include <QPointer>

using namespace Qt::StringLiterals;

namespace velbrix {
namespace {

QString name(AuthorizationStatus status)
{
    switch (status) {
    case AuthorizationStatus::notDetermined:
        return u"notDetermined"_s;
    case AuthorizationStatus::restricted:
        return u"restricted"_s;
    case AuthorizationStatus::denied:
        return u"denied"_s;
    case AuthorizationStatus::authorized:
        return u"authorized"_s;
    }
    Q_UNREACHABLE();
}

} // namespace

RecorderAccess::RecorderAccess(Permissions &permissions, ScreenCapture &capture, RecorderLog &log,
                               QObject *parent)
    : QObject(parent), _permissions(permissions), _capture(capture), _log(log)
{
}

QCoro::Task<bool> RecorderAccess::checkPermission()
{
    const QPointer self(this);
    const auto content = co_await _capture.shareableContent();
    if (!self)
        co_return false;
    _hasPermission = content.has_value();
    if (content)
        _log.append(u"✅ 屏幕权限已授予（CGPreflight="_s + log::text(_permissions.preflightScreenCapture()) +
                    u'）');
    else
        _log.append(u"❌ 无屏幕权限:"_s + content.error().message);
    co_return content.has_value();
}

QCoro::Task<bool> RecorderAccess::requestPermission()
{
    const QPointer self(this);
    _log.append(u"请求屏幕录制权限…"_s);
    _log.append(u"CGRequestScreenCaptureAccess →"_s + log::text(_permissions.requestScreenCapture()));
    const auto content = co_await _capture.shareableContent();
    if (!self)
        co_return false;
    _hasPermission = content.has_value();
    _showPermissionDialog = !content.has_value();
    _log.append(content ? u"✅ 权限已授予"_s : u"❌ 仍无权限:"_s + content.error().message);
    co_return content.has_value();
}

bool RecorderAccess::checkMicPermission()
{
    _hasMicPermission = _permissions.microphone() == AuthorizationStatus::authorized;
    return _hasMicPermission;
}

QCoro::Task<bool> RecorderAccess::requestMicPermission()
{
    const QPointer self(this);
    const AuthorizationStatus status = _permissions.microphone();
    _log.append(u"麦克风权限:"_s + name(status));
    if (status != AuthorizationStatus::notDetermined)
        co_return micOutcome(status == AuthorizationStatus::authorized);
    const bool granted = co_await _permissions.requestMicrophone();
    if (!self)
        co_return false;
    co_return micOutcome(granted);
}

QString RecorderAccess::screenRefusal() const
{
    const QString refusal = u"没有屏幕录制权限"_s;
    const QString reason = _permissions.explanation(PrivacyPane::screenCapture);
    // Where the session lets everybody see the screen, the explanation says that.
    return reason.isEmpty() || _permissions.preflightScreenCapture() ? refusal : refusal + u'：' + reason;
}

QString RecorderAccess::microphoneNote() const
{
    const QString explanation = _permissions.explanation(PrivacyPane::microphone);
    if (!_capture.features().microphone)
        return explanation.isEmpty() ? u"需要 macOS 15+ 的麦克风捕获"_s : explanation;
    if (!_hasMicPermission)
        return explanation.isEmpty() ? u"未授予麦克风权限，打开将请求权限"_s : explanation;
    return {};
}

bool RecorderAccess::openScreenSettings()
{
    return _permissions.openSettings(PrivacyPane::screenCapture);
}

bool RecorderAccess::micOutcome(bool granted)
{
    _hasMicPermission = granted;
    _log.append(granted ? u"✅ 麦克风权限已授予"_s : u"❌ 麦克风权限被拒绝"_s);
    if (!granted)
        _permissions.openSettings(PrivacyPane::microphone);
    return granted;
}

} // namespace velbrix
