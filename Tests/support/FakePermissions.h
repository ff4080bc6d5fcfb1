#pragma once

#include "platform/Permissions.h"
#include "support/AnswerTime.h"

#include <QMap>
#include <QStringList>

namespace velbrix::test {

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
        calls.append(QStringLiteral("requestScreenCapture"));
        screenCaptureGranted = screenCaptureGranted || grantsOnRequest;
        return screenCaptureGranted;
    }

    AuthorizationStatus microphone() const override { return microphoneStatus; }
    QCoro::Task<bool> requestMicrophone() override
    {
        calls.append(QStringLiteral("requestMicrophone"));
        co_await _answer.after();
        co_return answer(microphoneStatus);
    }
    AuthorizationStatus camera() const override { return cameraStatus; }
    QCoro::Task<bool> requestCamera() override
    {
        calls.append(QStringLiteral("requestCamera"));
        co_await _answer.after();
        co_return answer(cameraStatus);
    }

    bool accessibilityTrusted() const override { return true; }
    void promptForAccessibility() override { calls.append(QStringLiteral("promptForAccessibility")); }

    QString explanation(PrivacyPane pane) const override { return explanations.value(pane); }
    bool openSettings(PrivacyPane pane) override
    {
        calls.append(QStringLiteral("openSettings %1").arg(static_cast<int>(pane)));
        return false;
    }

private:
    // The system asks the user only once.
    bool answer(AuthorizationStatus &status) const
    {
        if (status == AuthorizationStatus::notDetermined)
            status = grantsOnRequest ? AuthorizationStatus::authorized : AuthorizationStatus::denied;
        return status == AuthorizationStatus::authorized;
    }

    AnswerTime _answer;
};

} // namespace velbrix::test
