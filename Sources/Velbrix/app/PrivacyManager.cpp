#include "app/PrivacyManager.h"

#include "foundation/SettingsStore.h"
#include "platform/Permissions.h"
#include "platform/UserNotifications.h"

#include <QJsonValue>

#include <utility>

using namespace Qt::StringLiterals;
using namespace std::chrono_literals;

namespace velbrix {
namespace {

const QString prefix = u"Velbrix_Privacy_"_s;

} // namespace

PrivacyManager::PrivacyManager(Permissions &permissions, UserNotifications &notifications,
                               SettingsStore &settings, Clock &clock, QObject *parent)
    : QObject(parent),
      _permissions(permissions),
      _notifications(notifications),
      _settings(settings),
      _clock(clock)
{
    const bool accepted = _settings.boolean(prefix + u"firstLaunchAccepted"_s).value_or(false);
    for (const PrivacyConsentKind kind : allPrivacyConsentKinds) {
        if (kind != PrivacyConsentKind::firstLaunch &&
            _settings.boolean(prefix + u"consent_"_s + rawValue(kind)).value_or(false))
            _consented.insert(rawValue(kind));
    }
    if (accepted)
        _consented.insert(rawValue(PrivacyConsentKind::firstLaunch));
    _hasAcceptedFirstLaunchNotice = accepted;
}

PrivacyManager::~PrivacyManager() = default;

void PrivacyManager::grant(PrivacyConsentKind kind)
{
    _consented.insert(rawValue(kind));
    set(u"consent_"_s + rawValue(kind), true);
    if (kind == PrivacyConsentKind::firstLaunch)
        acceptFirstLaunch();
}

void PrivacyManager::acceptFirstLaunch()
{
    _consented.insert(rawValue(PrivacyConsentKind::firstLaunch));
    set(u"firstLaunchAccepted"_s, true);
    set(u"consent_firstLaunch"_s, true);
    set(u"firstLaunchAcceptedAt"_s, static_cast<double>(_clock.now().toMSecsSinceEpoch()) / 1000);
    _hasAcceptedFirstLaunchNotice = true;
}

bool PrivacyManager::requireStatement()
{
    if (!_hasAcceptedFirstLaunchNotice)
        Q_EMIT statementNeeded();
    return _hasAcceptedFirstLaunchNotice;
}

void PrivacyManager::guard(FeaturePrivacyNotice notice, std::function<void()> action)
{
    if (hasConsent(notice.kind)) {
        action();
        return;
    }
    const PrivacyConsentKind kind = notice.kind;
    notice.onConfirm = [this, kind, action = std::move(action)] {
        grant(kind);
        action();
    };
    // Also one of the same kind: its action is another.
    cancelPendingNotice();
    _pendingFeatureNotice = std::optional(std::move(notice));
}

void PrivacyManager::confirmPendingNotice()
{
    const auto notice = _pendingFeatureNotice.value();
    _pendingFeatureNotice = std::optional<FeaturePrivacyNotice>();
    if (notice && notice->onConfirm)
        notice->onConfirm();
}

void PrivacyManager::cancelPendingNotice()
{
    const auto notice = _pendingFeatureNotice.value();
    _pendingFeatureNotice = std::optional<FeaturePrivacyNotice>();
    if (notice && notice->onCancel)
        notice->onCancel();
}

QString PrivacyManager::missingConsent(PrivacyConsentKind kind) const
{
    if (!_hasAcceptedFirstLaunchNotice)
        return u"尚未完成首启声明确认。请先在 Velbrix 窗口中确认。"_s;
    const auto notice = _pendingFeatureNotice.value();
    if (notice && notice->kind == kind)
        return u"需要先在 Velbrix 窗口中确认：%1"_s.arg(notice->title);
    return {};
}

void PrivacyManager::startFirstLaunchCountdown()
{
    if (_hasAcceptedFirstLaunchNotice || _countdown || _firstLaunchCountdown == 0)
        return;
    _countdown = _clock.every(1s, [this] {
        _firstLaunchCountdown = _firstLaunchCountdown - 1;
        if (_firstLaunchCountdown == 0)
            _countdown.reset();
    });
}

void PrivacyManager::confirmFirstLaunch()
{
    if (_hasAcceptedFirstLaunchNotice || _firstLaunchCountdown > 0)
        return;
    acceptFirstLaunch();
    promptAllSystemPermissions();
}

void PrivacyManager::promptAllSystemPermissions()
{
    const QString key = prefix + u"didPromptAllSystemPermissions"_s;
    if (_settings.boolean(key).value_or(false))
        return;
    _settings.set(key, true);
    // On disk before the first prompt: an interrupted sequence is not repeated.
    (void)_settings.flush();
    // At once, none waiting for another's answer.
    _notifications.requestAuthorization();
    if (_permissions.microphone() == AuthorizationStatus::notDetermined)
        _permissions.requestMicrophone();
    if (_permissions.camera() == AuthorizationStatus::notDetermined)
        _permissions.requestCamera();
    _screenPrompt = _clock.after(600ms, [this] {
        if (!_permissions.preflightScreenCapture())
            _permissions.requestScreenCapture();
    });
    _accessibilityPrompt = _clock.after(1200ms, [this] { _permissions.promptForAccessibility(); });
}

void PrivacyManager::set(const QString &name, const QJsonValue &value)
{
    _settings.set(prefix + name, value);
}

} // namespace velbrix
