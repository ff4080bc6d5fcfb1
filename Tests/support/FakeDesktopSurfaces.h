#pragma once

#include "platform/DesktopSurfaces.h"
#include "support/AnswerTime.h"

namespace velbrix::test {

// A turn later, where anybody listens; never after the end of the context.
template <typename Call, typename... Arguments>
void announce(QObject &context, const Call &call, const Arguments &...with)
{
    if (call)
        QMetaObject::invokeMethod(&context, [=] { call(with...); }, Qt::QueuedConnection);
}

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
        calls << u"setFrame"_s;
        frame = newFrame;
    }
    void setLayer(SurfaceLayer newLayer) override
    {
        calls << u"setLayer %1Icons"_s.arg(newLayer == SurfaceLayer::belowIcons ? u"below" : u"above");
        layer = newLayer;
    }
    void orderFront() override
    {
        calls << u"orderFront"_s;
        isShown = true;
        _hasId = true;
    }
    void orderOut() override
    {
        calls << u"orderOut"_s;
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
    FakeVideoSurface(FakeSurfaceWindow &in, VideoEvents events, QList<FakeVideoSurface *> &alive,
                     AnswerTime &answer)
        : window(in), _events(std::move(events)), _alive(alive), _answer(answer)
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
        announce(_turn, _events.firstFrame);
    }
    void fail(const QString &why)
    {
        if (path.isEmpty())
            return;
        path.clear();
        announce(_turn, _events.failed, Failure{why});
    }
    // An interval of playing has passed.
    void tick()
    {
        if (!isPlaying || path.isEmpty() || !window.isShown || timeInterval.count() == 0)
            return;
        ++pictures;
        announce(_turn, _events.time);
    }

    void load(const QString &file) override
    {
        calls << u"load "_s + file;
        path = file;
    }
    void play(double newRate) override
    {
        calls << u"play %1"_s.arg(newRate);
        isPlaying = true;
        rate = newRate;
    }
    void pause() override
    {
        calls << u"pause"_s;
        isPlaying = false;
    }
    void setVolume(double newVolume) override
    {
        calls << u"setVolume %1"_s.arg(newVolume);
        volume = newVolume;
    }
    void setGravity(VideoGravity newGravity) override
    {
        static constexpr const char *names[] = {"stretch", "fit", "crop"};
        calls << u"setGravity "_s + QLatin1String(names[static_cast<int>(newGravity)]);
        gravity = newGravity;
    }
    void observeTime(std::chrono::milliseconds interval) override
    {
        calls << u"observeTime %1"_s.arg(interval.count());
        timeInterval = interval;
    }

    QCoro::Task<Result<QImage>> currentFrame() override
    {
        calls << u"currentFrame"_s;
        const Result<QImage> answer =
            path.isEmpty() ? Result<QImage>(failure(u"没有正在显示的画面"_s)) : picture;
        co_await _answer.after(); // also when the surface has ended by then
        co_return answer;
    }
    qint64 progress() const override { return pictures; }

private:
    static QImage greyPicture()
    {
        QImage grey(64, 36, QImage::Format_RGB32);
        grey.fill(Qt::gray);
        return grey;
    }

    const VideoEvents _events;
    QList<FakeVideoSurface *> &_alive;
    AnswerTime &_answer;
    QObject _turn; // nothing is announced after it
};

// A preview whose pictures the test sends; they come a turn later. One that
// rests shows only the first. A missing file fails as it does on the host.
class FakePreview final : public VideoPreview {
public:
    FakePreview(const QString &file, QSize limit, PreviewEvents events, QList<FakePreview *> &alive)
        : path(file), bound(limit), _events(std::move(events)), _alive(alive)
    {
        _alive.append(this);
        if (!QFile::exists(path))
            fail(u"文件不存在"_s);
    }
    ~FakePreview() override { _alive.removeOne(this); }

    const QString path;
    const QSize bound;
    bool isPlaying = false;

    void show(const QImage &picture)
    {
        if (!isPlaying && _hasShown)
            return;
        _hasShown = true;
        const bool fits = picture.size().boundedTo(bound) == picture.size();
        announce(_turn, _events.frame, fits ? picture : picture.scaled(bound, Qt::KeepAspectRatio));
    }
    void fail(const QString &why) { announce(_turn, _events.failed, Failure{why}); }

    void play() override { isPlaying = true; }
    void pause() override { isPlaying = false; }

private:
    const PreviewEvents _events;
    QList<FakePreview *> &_alive;
    bool _hasShown = false;
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
                                                  surfaces, _answer);
    }

    Result<std::unique_ptr<VideoPreview>> makePreview(const QString &path, QSize bound,
                                                      PreviewEvents events) override
    {
        if (refusal)
            return std::unexpected(*refusal);
        return std::make_unique<FakePreview>(path, bound, std::move(events), previews);
    }

private:
    AnswerTime _answer;
    quint32 _lastId = 1000;
};

} // namespace velbrix::test
