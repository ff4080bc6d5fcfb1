#pragma once

#include "platform/linux/media/recording/MovieRecorder.h"
#include "platform/linux/x11/capture/X11ScreenCapture.h"
#include "support/Test.h"

#include <QColor>
#include <QCoroTask>

#include <cstdlib>
#include <cstring>
#include <mutex>

namespace velbrix::test {

// What a fake recorder was given, kept beyond its death. Any thread.
class FakeMovie {
public:
    explicit FakeMovie(MovieSettings asked) : settings(std::move(asked))
    {
        const qsizetype size = qsizetype(settings.width) * settings.height;
        _whole = {QByteArray(size, 0), QByteArray(size / 4, 0), QByteArray(size / 4, 0)};
        _patched = _whole;
    }

    const MovieSettings settings;

    // How many pictures the queue refuses from now on.
    void refuse(int pictures)
    {
        const std::scoped_lock lock(_lock);
        _refusals = pictures;
    }

    void call(const QString &what)
    {
        const std::scoped_lock lock(_lock);
        _calls << what;
    }

    bool submit(const PictureView &picture, std::span<const PixelRect> changed, qint64 tick)
    {
        const std::scoped_lock lock(_lock);
        if (_refusals > 0) {
            --_refusals;
            return false;
        }
        _ticks << tick;
        copy(picture, {0, 0, settings.width, settings.height}, _whole);
        for (const PixelRect &rect : changed)
            copy(picture, rect, _patched);
        return true;
    }

    QStringList calls() const { return now(_calls); }
    QList<qint64> ticks() const { return now(_ticks); }
    int refusalsLeft() const { return now(_refusals); }
    // Whether the rectangles named everything that differed so far.
    bool wereChangesNamed() const
    {
        const std::scoped_lock lock(_lock);
        return _whole == _patched;
    }
    // Of the newest picture.
    QColor colorAt(int x, int y) const
    {
        const double luma = 1.164 * (sample(0, x, y) - 16);
        const double blue = sample(1, x / 2, y / 2) - 128.0;
        const double red = sample(2, x / 2, y / 2) - 128.0;
        const auto level = [](double value) { return std::clamp(qRound(value), 0, 255); };
        return QColor(level(luma + 1.596 * red), level(luma - 0.813 * red - 0.391 * blue),
                      level(luma + 2.018 * blue));
    }
    int lumaAt(int x, int y) const { return sample(0, x, y); }

private:
    using Planes = std::array<QByteArray, 3>; // Y, U and V

    template <typename Value> Value now(const Value &value) const
    {
        const std::scoped_lock lock(_lock);
        return value;
    }
    int widthOf(std::size_t plane) const { return plane == 0 ? settings.width : settings.width / 2; }
    int sample(std::size_t plane, int x, int y) const
    {
        const std::scoped_lock lock(_lock);
        return static_cast<quint8>(_whole[plane][y * widthOf(plane) + x]);
    }
    void copy(const PictureView &from, const PixelRect &rect, Planes &to) const
    {
        const std::uint8_t *const sources[] = {from.y, from.u, from.v};
        for (std::size_t plane = 0; plane < to.size(); ++plane) {
            const int part = plane == 0 ? 1 : 2;
            const int stride = plane == 0 ? from.strideY : from.strideUV;
            for (int y = rect.y / part; y < rect.y / part + rect.height / part; ++y)
                std::memcpy(to[plane].data() + y * widthOf(plane) + rect.x / part,
                            sources[plane] + y * stride + rect.x / part,
                            static_cast<std::size_t>(rect.width / part));
        }
    }

    mutable std::mutex _lock;
    int _refusals = 0;
    QStringList _calls;
    QList<qint64> _ticks;
    Planes _whole;
    Planes _patched;
};

class FakeMovieRecorder final : public MovieRecorder {
public:
    FakeMovieRecorder(std::shared_ptr<FakeMovie> movie, CaptureLedger &ledger)
        : _movie(std::move(movie)), _ledger(ledger)
    {
    }
    ~FakeMovieRecorder() override { _movie->call(u"destroyed"_s); }

    MovieTracks tracks() const override
    {
        return {_movie->settings.systemAudio, _movie->settings.microphone};
    }
    void useSystemAudio() override { _movie->call(u"useSystemAudio"_s); }
    void useMicrophone(std::optional<QString> deviceId) override
    {
        _movie->call(u"useMicrophone "_s + deviceId.value_or(u"default"_s));
    }
    void begin(std::int64_t) override { _movie->call(u"begin"_s); }
    bool submit(const PictureView &picture, std::span<const PixelRect> changed, std::int64_t tick) override
    {
        if (!_movie->submit(picture, changed, tick))
            return false;
        _ledger.noteWrittenFrame(static_cast<double>(tick) / _movie->settings.framesPerSecond);
        return true;
    }
    Result<void> finish(std::int64_t lastTick) override
    {
        _movie->call(u"finish %1"_s.arg(lastTick));
        return {};
    }

private:
    std::shared_ptr<FakeMovie> _movie;
    CaptureLedger &_ledger;
};

// As far as colours survive in a movie.
inline bool isLike(QColor a, QColor b)
{
    return std::abs(a.red() - b.red()) <= 6 && std::abs(a.green() - b.green()) <= 6 &&
           std::abs(a.blue() - b.blue()) <= 6;
}

// The X11 recorder with a movie that is only kept in memory.
struct RecordingRig {
    explicit RecordingRig(const X11Abilities &allowed = {})
        : capture(
              [this](const MovieSettings &asked, int, CaptureLedger &ledger,
                     MovieRecorder::Events recorderEvents) -> Result<std::unique_ptr<MovieRecorder>> {
                  movie = std::make_shared<FakeMovie>(asked);
                  events = std::move(recorderEvents);
                  return std::make_unique<FakeMovieRecorder>(movie, ledger);
              },
              allowed)
    {
    }

    // The main display with its own size unless told otherwise.
    CaptureFilter mainDisplay(QList<quint32> excluded = {})
    {
        const auto content = QCoro::waitFor(capture.shareableContent());
        return {.windowId = std::nullopt,
                .displayId =
                    content && !content->displays.isEmpty() ? content->displays.first().displayId : 0,
                .excludedWindows = std::move(excluded)};
    }

    // What is listed of a window now.
    std::optional<CapturableWindow> listed(quint32 window)
    {
        const QList<CapturableWindow> all = QCoro::waitFor(capture.shareableContent())->windows;
        const auto found = std::ranges::find(all, window, &CapturableWindow::windowId);
        return found == all.end() ? std::nullopt : std::optional(*found);
    }

    Result<void> make(const CaptureFilter &filter, QSize size = {}, bool cursor = false)
    {
        const auto geometry = capture.geometry(filter);
        if (!geometry)
            return std::unexpected(geometry.error());
        if (size.isEmpty())
            size = QSize(geometry->contentSize.toSize().width() & ~1,
                         geometry->contentSize.toSize().height() & ~1);
        const StreamConfiguration configuration{.width = size.width(),
                                                .height = size.height(),
                                                .framesPerSecond = 60,
                                                .showsCursor = cursor,
                                                .microphoneDeviceId = u"mic-1"_s};
        CaptureObserver observer;
        observer.streamStopped = [this](Failure why) { stops << why.message; };
        observer.warning = [this](QString text) { warnings << text; };
        auto made = capture.makeSession(filter, configuration, observer);
        if (!made)
            return std::unexpected(made.error());
        session = std::move(*made);
        settings.width = size.width();
        settings.height = size.height();
        return {};
    }

    Result<void> open()
    {
        if (const auto tracks = session->openWriter(settings); !tracks)
            return std::unexpected(tracks.error());
        return session->addOutput(CaptureOutput::screen);
    }

    Result<void> start(const CaptureFilter &filter, QSize size = {}, bool cursor = false)
    {
        Result<void> done = make(filter, size, cursor);
        if (done)
            done = open();
        return done ? QCoro::waitFor(session->startCapture()) : done;
    }

    Result<void> stop()
    {
        const Result<void> stopped = QCoro::waitFor(session->stopCapture());
        return stopped ? QCoro::waitFor(session->finishWriting()) : stopped;
    }

    struct Spot {
        int x;
        int y;
        QColor colour;
    };
    // In the newest picture.
    bool shows(std::initializer_list<Spot> spots) const
    {
        return std::ranges::all_of(
            spots, [this](const Spot &spot) { return isLike(movie->colorAt(spot.x, spot.y), spot.colour); });
    }
    int count(const QString &status) const
    {
        return session->ledger().counters().statusHistogram.value(status);
    }

    X11ScreenCapture capture;
    MovieSettings settings;
    std::shared_ptr<FakeMovie> movie;
    MovieRecorder::Events events;
    std::unique_ptr<CaptureSession> session;
    QStringList stops;
    QStringList warnings;
};

} // namespace velbrix::test
