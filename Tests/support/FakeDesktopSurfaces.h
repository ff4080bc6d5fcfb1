#pragma once

#include "platform/DesktopSurfaces.h"

#include <QList>
#include <QStringList>

#include <optional>
#include <utility>

namespace velbrix::test {

// A video that only remembers what was asked. Events come when the test calls
// firstFrame(), fail() and tick(); they may destroy the surface.
class FakeVideoSurface final : public VideoSurface {
public:
    FakeVideoSurface(const QRect &where, SurfaceEvents events, quint32 id, QList<FakeVideoSurface *> &alive)
        : frame(where), _events(std::move(events)), _id(id), _alive(alive)
    {
        _alive.append(this);
    }
    ~FakeVideoSurface() override { _alive.removeOne(this); }

    QString path; // empty when nothing is loaded
    bool isPlaying = false;
    double rate = 1;
    double volume = 0;
    VideoGravity gravity = VideoGravity::stretch;
    std::chrono::milliseconds timeInterval{0};
    QRect frame;
    SurfaceLayer layer = SurfaceLayer::belowIcons;
    bool isShown = false;
    qint64 pictures = 0;
    // The answer to currentFrame() while something is loaded.
    Result<QImage> picture = greyPicture();
    QStringList calls; // "load PATH", "play 1.5", "setGravity fit", "orderFront", … in order

    void firstFrame()
    {
        ++pictures;
        if (const auto call = _events.firstFrame)
            call();
    }
    void fail(const QString &why)
    {
        if (const auto call = _events.failed)
            call(Failure{why});
    }
    // An interval of playing has passed.
    void tick()
    {
        if (!isPlaying || timeInterval.count() == 0)
            return;
        ++pictures;
        if (const auto call = _events.time)
            call();
    }

    void load(const QString &file) override
    {
        calls << QStringLiteral("load ") + file;
        path = file;
    }
    void unload() override
    {
        calls << QStringLiteral("unload");
        path.clear();
    }
    void play(double newRate) override
    {
        calls << QStringLiteral("play %1").arg(newRate);
        isPlaying = true;
        rate = newRate;
    }
    void pause() override
    {
        calls << QStringLiteral("pause");
        isPlaying = false;
    }
    void setVolume(double newVolume) override
    {
        calls << QStringLiteral("setVolume %1").arg(newVolume);
        volume = newVolume;
    }
    void setGravity(VideoGravity newGravity) override
    {
        static constexpr const char *names[] = {"stretch", "fit", "crop"};
        calls << QStringLiteral("setGravity ") + QLatin1String(names[static_cast<int>(newGravity)]);
        gravity = newGravity;
    }
    void observeTime(std::chrono::milliseconds interval) override
    {
        calls << QStringLiteral("observeTime %1").arg(interval.count());
        timeInterval = interval;
    }
    void setFrame(const QRect &newFrame) override
    {
        calls << QStringLiteral("setFrame %1,%2 %3x%4")
                     .arg(newFrame.x())
                     .arg(newFrame.y())
                     .arg(newFrame.width())
                     .arg(newFrame.height());
        frame = newFrame;
    }
    void setLayer(SurfaceLayer newLayer) override
    {
        const bool isBelow = newLayer == SurfaceLayer::belowIcons;
        calls << (isBelow ? QStringLiteral("setLayer belowIcons") : QStringLiteral("setLayer aboveIcons"));
        layer = newLayer;
    }
    void orderFront() override
    {
        calls << QStringLiteral("orderFront");
        isShown = true;
    }
    void orderOut() override
    {
        calls << QStringLiteral("orderOut");
        isShown = false;
    }

    QCoro::Task<Result<QImage>> currentFrame() override
    {
        calls << QStringLiteral("currentFrame");
        if (path.isEmpty())
            co_return failure(QStringLiteral("没有正在显示的画面"));
        co_return std::as_const(picture);
    }
    qint64 progress() const override { return pictures; }
    quint32 windowId() const override { return _id; }

private:
    static QImage greyPicture()
    {
        QImage grey(64, 36, QImage::Format_RGB32);
        grey.fill(Qt::gray);
        return grey;
    }

    const SurfaceEvents _events;
    const quint32 _id;
    QList<FakeVideoSurface *> &_alive;
};

// A preview whose pictures the test sends.
class FakePreview final : public VideoPreview {
public:
    FakePreview(const QString &file, QSize limit, PreviewEvents events, QList<FakePreview *> &alive)
        : path(file), bound(limit), _events(std::move(events)), _alive(alive)
    {
        _alive.append(this);
    }
    ~FakePreview() override { _alive.removeOne(this); }

    const QString path;
    const QSize bound;
    bool isPlaying = false;

    void show(const QImage &picture)
    {
        if (const auto call = _events.frame)
            call(picture);
    }
    void fail(const QString &why)
    {
        if (const auto call = _events.failed)
            call(Failure{why});
    }

    void play() override { isPlaying = true; }
    void pause() override { isPlaying = false; }

private:
    const PreviewEvents _events;
    QList<FakePreview *> &_alive;
};

// A desktop whose surfaces the test can reach. Must outlive what it made.
class FakeDesktopSurfaces final : public DesktopSurfaces {
public:
    std::optional<Failure> refusal; // what both verbs fail with
    int preparations = 0;
    int surfacesMade = 0;
    int previewsMade = 0;
    QList<FakeVideoSurface *> surfaces; // alive, in the order of their making
    QList<FakePreview *> previews;

    void prepare() override { ++preparations; }

    Result<std::unique_ptr<VideoSurface>> makeVideoSurface(const QRect &frame, SurfaceEvents events) override
    {
        if (refusal)
            return std::unexpected(*refusal);
        const quint32 id = 1000 + static_cast<quint32>(surfacesMade++);
        return std::make_unique<FakeVideoSurface>(frame, std::move(events), id, surfaces);
    }

    Result<std::unique_ptr<VideoPreview>> makePreview(const QString &path, QSize bound,
                                                      PreviewEvents events) override
    {
        if (refusal)
            return std::unexpected(*refusal);
        ++previewsMade;
        return std::make_unique<FakePreview>(path, bound, std::move(events), previews);
    }
};

} // namespace velbrix::test
