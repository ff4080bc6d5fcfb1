#pragma once

#include "platform/DesktopSurfaces.h"

#include <QCoreApplication>
#include <QCoroFuture>
#include <QList>
#include <QPromise>
#include <QStringList>

#include <optional>
#include <utility>

namespace velbrix::test {

// A window that only remembers what was asked.
class FakeSurfaceWindow final : public SurfaceWindow {
public:
    FakeSurfaceWindow(const QRect &where, quint32 id, QList<FakeSurfaceWindow *> &alive)
        : frame(where), _id(id), _alive(alive)
    {
        _alive.append(this);
    }
    ~FakeSurfaceWindow() override { _alive.removeOne(this); }

    QRect frame;
    SurfaceLayer layer = SurfaceLayer::belowIcons;
    bool isShown = false;
    QStringList calls; // "setLayer belowIcons", "orderFront", … in order

    void setFrame(const QRect &newFrame) override
    {
        calls << QStringLiteral("setFrame");
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
        _hasId = true;
    }
    void orderOut() override
    {
        calls << QStringLiteral("orderOut");
        isShown = false;
    }
    std::optional<quint32> windowId() const override { return _hasId ? std::optional(_id) : std::nullopt; }

private:
    const quint32 _id;
    bool _hasId = false;
    QList<FakeSurfaceWindow *> &_alive;
};

// A video that only remembers what was asked. The test says when something
// happens; it is announced a turn of the event loop later, as every host does,
// and only where a host could announce it.
class FakeVideoSurface final : public VideoSurface {
public:
    FakeVideoSurface(FakeSurfaceWindow &in, VideoEvents events, QList<FakeVideoSurface *> &alive)
        : window(in), _events(std::move(events)), _alive(alive)
    {
        _alive.append(this);
    }
    ~FakeVideoSurface() override { _alive.removeOne(this); }

    FakeSurfaceWindow &window;
    QString path; // empty when nothing is loaded
    bool isPlaying = false;
    double rate = 1;
    double volume = 0;
    VideoGravity gravity = VideoGravity::stretch;
    std::chrono::milliseconds timeInterval{0};
    qint64 pictures = 0;
    // The answer to currentFrame() while something is loaded.
    Result<QImage> picture = greyPicture();
    QStringList calls; // "load PATH", "play 1.5", "setGravity fit", … in order

    // Of what is loaded, once it can be seen.
    void firstFrame()
    {
        if (path.isEmpty() || !window.isShown)
            return;
        ++pictures;
        announce([call = _events.firstFrame] {
            if (call)
                call();
        });
    }
    void fail(const QString &why)
    {
        if (path.isEmpty())
            return;
        path.clear();
        announce([call = _events.failed, why] {
            if (call)
                call(Failure{why});
        });
    }
    // An interval of playing has passed.
    void tick()
    {
        if (!isPlaying || path.isEmpty() || !window.isShown || timeInterval.count() == 0)
            return;
        ++pictures;
        announce([call = _events.time] {
            if (call)
                call();
        });
    }

    void load(const QString &file) override
    {
        calls << QStringLiteral("load ") + file;
        path = file;
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

    QCoro::Task<Result<QImage>> currentFrame() override
    {
        calls << QStringLiteral("currentFrame");
        const Result<QImage> answer =
            path.isEmpty() ? Result<QImage>(failure(QStringLiteral("没有正在显示的画面"))) : picture;
        const auto promise = std::make_shared<QPromise<Result<QImage>>>();
        const QFuture<Result<QImage>> future = promise->future();
        promise->start();
        // Also when the surface has ended by then.
        QMetaObject::invokeMethod(
            QCoreApplication::instance(),
            [promise, answer] {
                promise->addResult(answer);
                promise->finish();
            },
            Qt::QueuedConnection);
        co_return co_await future;
    }
    qint64 progress() const override { return pictures; }

private:
    void announce(std::function<void()> call)
    {
        QMetaObject::invokeMethod(&_turn, std::move(call), Qt::QueuedConnection);
    }
    static QImage greyPicture()
    {
        QImage grey(64, 36, QImage::Format_RGB32);
        grey.fill(Qt::gray);
        return grey;
    }

    const VideoEvents _events;
    QList<FakeVideoSurface *> &_alive;
    QObject _turn; // nothing is announced after it
};

// A preview whose pictures the test sends; they come a turn later.
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
        QMetaObject::invokeMethod(
            &_turn, [call = _events.frame, picture] { call(picture); }, Qt::QueuedConnection);
    }
    void fail(const QString &why)
    {
        QMetaObject::invokeMethod(
            &_turn, [call = _events.failed, why] { call(Failure{why}); }, Qt::QueuedConnection);
    }

    void play() override { isPlaying = true; }
    void pause() override { isPlaying = false; }

private:
    const PreviewEvents _events;
    QList<FakePreview *> &_alive;
    QObject _turn;
};

// A desktop whose windows and videos the test can reach. Must outlive what it
// made.
class FakeDesktopSurfaces final : public DesktopSurfaces {
public:
    std::optional<Failure> refusal; // what all verbs fail with
    int preparations = 0;
    int surfacesMade = 0;
    // Alive, in the order of their making.
    QList<FakeSurfaceWindow *> windows;
    QList<FakeVideoSurface *> surfaces;
    QList<FakePreview *> previews;

    void prepare() override { ++preparations; }

    Result<std::unique_ptr<SurfaceWindow>> makeWindow(const QRect &frame) override
    {
        if (refusal)
            return std::unexpected(*refusal);
        return std::make_unique<FakeSurfaceWindow>(frame, ++_lastId, windows);
    }

    Result<std::unique_ptr<VideoSurface>> makeVideo(SurfaceWindow &window, VideoEvents events) override
    {
        if (refusal)
            return std::unexpected(*refusal);
        ++surfacesMade;
        return std::make_unique<FakeVideoSurface>(static_cast<FakeSurfaceWindow &>(window), std::move(events),
                                                  surfaces);
    }

    Result<std::unique_ptr<VideoPreview>> makePreview(const QString &path, QSize bound,
                                                      PreviewEvents events) override
    {
        if (refusal)
            return std::unexpected(*refusal);
        return std::make_unique<FakePreview>(path, bound, std::move(events), previews);
    }

private:
    quint32 _lastId = 1000;
};

} // namespace velbrix::test
