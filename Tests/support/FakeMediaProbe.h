#pragma once

#include "platform/MediaProbe.h"
#include "support/AnswerTime.h"

#include <QFileInfo>
#include <QHash>
#include <QStringList>

#include <optional>
#include <utility>

namespace velbrix::test {

// Videos that are what the test says, as long as the file is there.
class FakeMediaProbe final : public MediaProbe {
public:
    explicit FakeMediaProbe(Clock &clock) : _answer(clock) { defaultFrame.fill(Qt::darkCyan); }

    QHash<QString, Result<VideoFacts>> factsOf; // by path; the default for the others
    Result<VideoFacts> defaultFacts =
        VideoFacts{.hasVideo = true, .size = {1920, 1080}, .framesPerSecond = 30, .duration = 10};
    QHash<QString, QImage> frameOf; // by path; the default for the others
    QImage defaultFrame{64, 36, QImage::Format_RGB32};
    std::optional<Result<QImage>> frameAnswer; // instead of all these
    std::chrono::milliseconds delay{0};
    QStringList calls; // "facts PATH", "frame PATH SECONDS WxH"

    QCoro::Task<Result<VideoFacts>> facts(const QString path) override
    {
        calls.append(QStringLiteral("facts ") + path);
        co_await _answer.after(delay);
        if (!QFileInfo::exists(path))
            co_return failure(QStringLiteral("文件不存在"));
        const Result<VideoFacts> answer = factsOf.value(path, defaultFacts);
        co_return answer;
    }
    QCoro::Task<Result<QImage>> frame(const QString path, double seconds, QSize bound,
                                      Cancellation cancellation) override
    {
        calls.append(QStringLiteral("frame %1 %2 %3x%4")
                         .arg(path, QString::number(seconds))
                         .arg(bound.width())
                         .arg(bound.height()));
        co_await _answer.after(delay);
        if (cancellation.isCancelled())
            co_return failure(QStringLiteral("已取消"));
        if (!QFileInfo::exists(path))
            co_return failure(QStringLiteral("文件不存在"));
        if (frameAnswer)
            co_return std::as_const(*frameAnswer);
        const QImage picture = frameOf.value(path, defaultFrame);
        const bool fits = picture.width() <= bound.width() && picture.height() <= bound.height();
        co_return fits ? picture : picture.scaled(bound, Qt::KeepAspectRatio, Qt::SmoothTransformation);
    }

private:
    AnswerTime _answer;
};

} // namespace velbrix::test
