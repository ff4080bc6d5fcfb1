#pragma once

#include "platform/DesktopPicture.h"
#include "support/AnswerTime.h"

#include <QFileInfo>
#include <QJsonDocument>
#include <QStringList>

#include <utility>

namespace velbrix::test {

// A desktop with one picture: what was set last, or what was restored.
class FakeDesktopPicture final : public DesktopPicture {
public:
    explicit FakeDesktopPicture(Clock &clock) : _answer(clock) {}

    Result<QJsonObject> now = QJsonObject{{QStringLiteral("path"), QStringLiteral("/own/picture.png")}};
    Result<void> setAnswer;
    Result<void> restoreAnswer;
    std::chrono::milliseconds delay{0};
    QStringList calls; // "current", "set PATH", "restore {compact json}"
    int overlaps = 0;  // calls that did not wait for the one before

    QCoro::Task<Result<QJsonObject>> current() override
    {
        const Turn turn(*this, QStringLiteral("current"));
        co_await _answer.after(delay);
        co_return std::as_const(now);
    }
    QCoro::Task<Result<void>> set(const QString path) override
    {
        const Turn turn(*this, QStringLiteral("set ") + path);
        co_await _answer.after(delay);
        if (!QFileInfo::exists(path))
            co_return failure(QStringLiteral("无法读取图片：") + path);
        if (setAnswer && now)
            now = QJsonObject{{QStringLiteral("path"), path}};
        co_return std::as_const(setAnswer);
    }
    QCoro::Task<Result<void>> restore(const QJsonObject picture) override
    {
        const QByteArray json = QJsonDocument(picture).toJson(QJsonDocument::Compact);
        const Turn turn(*this, QStringLiteral("restore ") + QString::fromUtf8(json));
        co_await _answer.after(delay);
        for (auto place = picture.begin(); restoreAnswer && now && place != picture.end(); ++place)
            now->insert(place.key(), *place);
        co_return std::as_const(restoreAnswer);
    }

private:
    struct Turn {
        Turn(FakeDesktopPicture &desktop, const QString &call) : running(desktop._running)
        {
            desktop.calls.append(call);
            if (running++ > 0)
                ++desktop.overlaps;
        }
        ~Turn() { --running; }
        Q_DISABLE_COPY_MOVE(Turn)
        int &running;
    };

    AnswerTime _answer;
    int _running = 0;
};

} // namespace velbrix::test
