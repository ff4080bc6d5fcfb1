#pragma once

#include "platform/InstallPlace.h"
#include "platform/LoginItem.h"
#include "platform/Permissions.h"
#include "platform/PowerSource.h"
#include "platform/SingleInstance.h"
#include "platform/SystemSleep.h"
#include "platform/UserNotifications.h"
#include "support/AnswerTime.h"

#include <QMap>

namespace velbrix::test {

class FakeLoginItem final : public LoginItem {
public:
    bool enabled = false;
    bool startedThisCopy = false;
    std::optional<QString> failsWith; // the next settings are refused with these words

    bool isEnabled() const override { return enabled; }
    Result<void> setEnabled(bool wanted) override
    {
        if (failsWith)
            return failure(*failsWith);
        enabled = wanted;
        return {};
    }
    QCoro::Task<bool> hasStartedThisCopy() override
    {
        co_await _answer.after();
        co_return startedThisCopy;
    }

private:
    AnswerTime _answer;
};

class FakeInstallPlace final : public InstallPlace {
public:
    std::optional<QString> misplaced;
    Result<void> moveAnswer;
    int moves = 0;

    std::optional<QString> misplacedAt() const override { return misplaced; }
    QCoro::Task<Result<void>> moveToApplications() override
    {
        ++moves;
        co_await _answer.after();
        co_return std::as_const(moveAnswer);
    }

private:
    AnswerTime _answer;
};

// A system that answers what the test has set.
class FakePermissions final : public Permissions {
public:
    bool screenCaptureGranted = true;
    bool grantsOnRequest = false; // what the user answers to each prompt
    AuthorizationStatus microphoneStatus = AuthorizationStatus::authorized;
    AuthorizationStatus cameraStatus = AuthorizationStatus::authorized;
    QMap<PrivacyPane, QString> explanations;
    QStringList calls; // only what may show something: requests, prompts, pages

    bool preflightScreenCapture() override { return screenCaptureGranted; }
    bool requestScreenCapture() override
    {
        calls << u"requestScreenCapture"_s;
        screenCaptureGranted = screenCaptureGranted || grantsOnRequest;
        return screenCaptureGranted;
    }

    AuthorizationStatus microphone() const override { return microphoneStatus; }
    QCoro::Task<bool> requestMicrophone() override { return ask(u"requestMicrophone"_s, microphoneStatus); }
    AuthorizationStatus camera() const override { return cameraStatus; }
    QCoro::Task<bool> requestCamera() override { return ask(u"requestCamera"_s, cameraStatus); }

    bool accessibilityTrusted() const override { return true; }
    void promptForAccessibility() override { calls << u"promptForAccessibility"_s; }

    QString explanation(PrivacyPane pane) const override { return explanations.value(pane); }
    bool openSettings(PrivacyPane pane) override
    {
        calls << u"openSettings %1"_s.arg(static_cast<int>(pane));
        return false; // there are no such pages
    }

private:
    // The system asks the user only once.
    QCoro::Task<bool> ask(const QString call, AuthorizationStatus &status)
    {
        calls << call;
        co_await _answer.after();
        if (status == AuthorizationStatus::notDetermined)
            status = grantsOnRequest ? AuthorizationStatus::authorized : AuthorizationStatus::denied;
        co_return status == AuthorizationStatus::authorized;
    }

    AnswerTime _answer;
};

class FakePowerSource final : public PowerSource {
public:
    bool battery = false;
    std::optional<QString> monitorFailure;

    // The plug is pulled or put back.
    void set(bool onBattery)
    {
        battery = onBattery;
        _observers.notify();
    }

    Result<Observation> observe(std::function<void()> changed) override
    {
        if (monitorFailure)
            return failure(*monitorFailure);
        return _observers.add(std::move(changed));
    }
    bool isOnBattery() const override { return battery; }

private:
    ObserverList<void()> _observers;
};

// The place of one copy; the test plays the others.
class FakeSingleInstance final : public SingleInstance {
public:
    bool isTaken = false;   // another copy holds the place
    bool isLeaving = false; // and goes before it can be woken
    QStringList calls;      // "claim", "wakeOther", "leave"

    bool claim() override
    {
        calls << u"claim"_s;
        return !isTaken;
    }
    bool wakeOther() override
    {
        calls << u"wakeOther"_s;
        isTaken = isTaken && !isLeaving;
        return !isLeaving;
    }
    Observation observeWake(std::function<void()> wake) override
    {
        Observation observation = _observers.add(std::move(wake));
        tell();
        return observation;
    }
    void leave() override { calls << u"leave"_s; }

    // A later copy asks this one to come forward, which is kept until somebody observes.
    void wake()
    {
        _isAsked = true;
        tell();
    }

private:
    // Never from inside the call that observes.
    void tell()
    {
        const auto wake = [this] {
            if (!_observers.isEmpty() && std::exchange(_isAsked, false))
                _observers.notify();
        };
        QMetaObject::invokeMethod(&_context, wake, Qt::QueuedConnection);
    }

    QObject _context;
    ObserverList<void()> _observers;
    bool _isAsked = false;
};

// A machine that the test wakes.
class FakeSystemSleep final : public SystemSleep {
public:
    bool isWatched() const { return !_observers.isEmpty(); }
    void wake() const { _observers.notify(); }

    Observation observeWaking(std::function<void()> woke) override { return _observers.add(std::move(woke)); }

private:
    ObserverList<void()> _observers;
};

// Shows banners as long as the user has granted them.
class FakeUserNotifications final : public UserNotifications {
public:
    Result<bool> authorization = true; // what the request answers
    NotificationSettings current{true, u"authorized"_s, u"enabled"_s};
    QStringList calls;              // "register …", "requestAuthorization", "settings"
    QList<UserNotification> posted; // in their order; refused ones are not among them

    void registerCategory(const QString identifier) override { calls << u"register "_s + identifier; }
    QCoro::Task<Result<bool>> requestAuthorization() override
    {
        calls << u"requestAuthorization"_s;
        co_await _answer.after();
        co_return std::as_const(authorization);
    }
    QCoro::Task<NotificationSettings> settings() override
    {
        calls << u"settings"_s;
        co_await _answer.after();
        co_return std::as_const(current);
    }
    QCoro::Task<Result<void>> post(const UserNotification notification) override
    {
        co_await _answer.after();
        if (!authorization)
            co_return std::unexpected(authorization.error());
        if (!*authorization || !current.mayNotify)
            co_return failure(u"系统没有允许通知"_s);
        posted.append(notification);
        co_return Result<void>();
    }

private:
    AnswerTime _answer;
};

} // namespace velbrix::test
