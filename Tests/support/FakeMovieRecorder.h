#pragma once

#include "platform/linux/media/recording/MovieRecorder.h"

#include <QColor>
#include <QList>
#include <QStringList>

#include <algorithm>
#include <cstring>
#include <mutex>
#include <utility>
#include <vector>

namespace velbrix::test {

// What a fake recorder was given, kept beyond its death. Any thread.
class FakeMovie {
public:
    explicit FakeMovie(MovieSettings settings) : _settings(std::move(settings))
    {
        const auto size =
            static_cast<std::size_t>(_settings.width) * static_cast<std::size_t>(_settings.height);
        for (Planes *planes : {&_whole, &_patched}) {
            planes->y.resize(size);
            planes->u.resize(size / 4);
            planes->v.resize(size / 4);
        }
    }

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
        copy(picture, {0, 0, _settings.width, _settings.height}, _whole);
        for (const PixelRect &rect : changed)
            copy(picture, rect, _patched);
        return true;
    }

    QStringList calls() const
    {
        const std::scoped_lock lock(_lock);
        return _calls;
    }
    QList<qint64> ticks() const
    {
        const std::scoped_lock lock(_lock);
        return _ticks;
    }
    int refusalsLeft() const
    {
        const std::scoped_lock lock(_lock);
        return _refusals;
    }
    // Whether the rectangles named everything that differed so far.
    bool wereChangesNamed() const
    {
        const std::scoped_lock lock(_lock);
        return _whole.y == _patched.y && _whole.u == _patched.u && _whole.v == _patched.v;
    }
    // Of the newest picture.
    QColor colorAt(int x, int y) const
    {
        const std::scoped_lock lock(_lock);
        const int chroma = (y / 2) * (_settings.width / 2) + x / 2;
        const double luma = 1.164 * (_whole.y[static_cast<std::size_t>(y * _settings.width + x)] - 16);
        const double blue = _whole.u[static_cast<std::size_t>(chroma)] - 128.0;
        const double red = _whole.v[static_cast<std::size_t>(chroma)] - 128.0;
        const auto level = [](double value) { return std::clamp(static_cast<int>(value + 0.5), 0, 255); };
        return QColor(level(luma + 1.596 * red), level(luma - 0.813 * red - 0.391 * blue),
                      level(luma + 2.018 * blue));
    }
    int lumaAt(int x, int y) const
    {
        const std::scoped_lock lock(_lock);
        return _whole.y[static_cast<std::size_t>(y * _settings.width + x)];
    }

private:
    struct Planes {
        std::vector<std::uint8_t> y;
        std::vector<std::uint8_t> u;
        std::vector<std::uint8_t> v;
    };

    void copy(const PictureView &from, const PixelRect &rect, Planes &to) const
    {
        const auto plane = [](const std::uint8_t *source, int sourceStride, std::uint8_t *target,
                              int targetStride, const PixelRect &part) {
            for (int y = part.y; y < part.y + part.height; ++y)
                std::memcpy(target + y * targetStride + part.x, source + y * sourceStride + part.x,
                            static_cast<std::size_t>(part.width));
        };
        const PixelRect half{rect.x / 2, rect.y / 2, rect.width / 2, rect.height / 2};
        plane(from.y, from.strideY, to.y.data(), _settings.width, rect);
        plane(from.u, from.strideUV, to.u.data(), _settings.width / 2, half);
        plane(from.v, from.strideUV, to.v.data(), _settings.width / 2, half);
    }

    const MovieSettings _settings;
    mutable std::mutex _lock;
    int _refusals = 0;
    QStringList _calls;
    QList<qint64> _ticks;
    Planes _whole;
    Planes _patched;
};

class FakeMovieRecorder final : public MovieRecorder {
public:
    FakeMovieRecorder(std::shared_ptr<FakeMovie> movie, const MovieSettings &settings, CaptureLedger &ledger)
        : _movie(std::move(movie)),
          _tracks{settings.systemAudio, settings.microphone},
          _framesPerSecond(settings.framesPerSecond),
          _ledger(ledger)
    {
    }
    ~FakeMovieRecorder() override { _movie->call(QStringLiteral("destroyed")); }

    MovieTracks tracks() const override { return _tracks; }
    void useSystemAudio() override { _movie->call(QStringLiteral("useSystemAudio")); }
    void useMicrophone(std::optional<QString> deviceId) override
    {
        _movie->call(QStringLiteral("useMicrophone ") + deviceId.value_or(QStringLiteral("default")));
    }
    void begin(std::int64_t) override { _movie->call(QStringLiteral("begin")); }
    bool submit(const PictureView &picture, std::span<const PixelRect> changed, std::int64_t tick) override
    {
        if (!_movie->submit(picture, changed, tick))
            return false;
        _ledger.noteWrittenFrame(static_cast<double>(tick) / _framesPerSecond);
        return true;
    }
    Result<void> finish(std::int64_t lastTick) override
    {
        _movie->call(QStringLiteral("finish %1").arg(lastTick));
        return {};
    }

private:
    std::shared_ptr<FakeMovie> _movie;
    MovieTracks _tracks;
    int _framesPerSecond;
    CaptureLedger &_ledger;
};

} // namespace velbrix::test
