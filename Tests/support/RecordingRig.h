#pragma once

#include "platform/linux/x11/capture/X11ScreenCapture.h"
#include "support/FakeMovieRecorder.h"

#include <QCoroTask>
#include <QStringList>

#include <algorithm>
#include <cstdlib>
#include <initializer_list>
#include <memory>
#include <optional>

namespace velbrix::test {

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
                  return std::make_unique<FakeMovieRecorder>(movie, asked, ledger);
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
                                                .microphoneDeviceId = QStringLiteral("mic-1")};
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
        if (done)
            done = QCoro::waitFor(session->startCapture());
        return done;
    }

    Result<void> stop()
    {
        Result<void> done = QCoro::waitFor(session->stopCapture());
        if (done)
            done = QCoro::waitFor(session->finishWriting());
        return done;
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
