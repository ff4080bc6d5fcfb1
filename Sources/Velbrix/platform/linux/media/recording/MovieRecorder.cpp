#include "platform/linux/media/recording/MovieRecorder.h"

#include "platform/DiskReserve.h"
#include "platform/linux/media/mp4/Mp4Writer.h"
#include "platform/linux/media/recording/H264Encoder.h"
#include "platform/linux/media/recording/MonotonicTime.h"
#include "platform/linux/media/recording/VideoTrack.h"
#include "platform/linux/media/sound/AacEncoder.h"
#include "platform/linux/media/sound/PulseCapture.h"
#include "platform/linux/media/sound/SoundTrack.h"

#include <atomic>
#include <chrono>
#include <condition_variable>
#include <mutex>
#include <thread>
#include <utility>
#include <vector>

using namespace Qt::StringLiterals;

namespace velbrix {
namespace {

constexpr std::chrono::seconds upkeepInterval(1);
constexpr int upkeepsPerSync = 3;
// Sound may be this late before silence takes its place.
constexpr std::int64_t soundGrace = 2'500'000'000;

class ThreadedMovieRecorder final : public MovieRecorder {
public:
    ThreadedMovieRecorder(const MovieSettings &settings, CaptureLedger &ledger, Events events)
        : _settings(settings), _ledger(ledger), _events(std::move(events))
    {
    }
    ~ThreadedMovieRecorder() override;

    Result<void> open(int queueDepth);

    MovieTracks tracks() const override { return {_system.track != nullptr, _microphone.track != nullptr}; }
    void useSystemAudio() override;
    void useMicrophone(std::optional<QString> deviceId) override;
    void begin(std::int64_t tickZero) override;
    bool submit(const PictureView &picture, std::span<const PixelRect> changed, std::int64_t tick) override
    {
        return _video->submit(picture, changed, tick);
    }
    Result<void> finish(std::int64_t lastTick) override;

private:
    struct Sound {
        std::unique_ptr<AacEncoder> encoder;
        std::unique_ptr<SoundTrack> track;
        std::unique_ptr<PulseCapture> capture;
    };

    void addSound(Sound &sound, int bitRate, std::vector<TrackDescription> &tracks) const;
    void openSound(Sound &sound, std::size_t index, bool (CaptureLedger::*note)());
    void listen(Sound &sound, PulseCapture::Kind kind, std::optional<QString> deviceId);
    void stopSound();
    void upkeep();
    void stopUpkeep();
    void fail(Failure reason);
    std::int64_t timeOf(std::int64_t tick) const;

    const MovieSettings _settings;
    CaptureLedger &_ledger;
    const Events _events;
    std::atomic<bool> _hasFailed = false;

    std::unique_ptr<Mp4Writer> _writer;
    std::unique_ptr<VideoTrack> _video;
    Sound _system;
    Sound _microphone;
    std::int64_t _tickZero = 0;

    std::mutex _lock; // of what follows
    std::condition_variable _ended;
    bool _ending = false;
    std::thread _upkeep;
};

ThreadedMovieRecorder::~ThreadedMovieRecorder()
{
    if (_upkeep.joinable())
        static_cast<void>(finish(0));
}

Result<void> ThreadedMovieRecorder::open(int queueDepth)
{
    auto encoder = H264Encoder::create(_settings);
    if (!encoder)
        return std::unexpected(encoder.error());
    std::vector<TrackDescription> tracks;
    tracks.push_back(
        {.isVideo = true,
         .timescale = static_cast<std::uint32_t>(_settings.framesPerSecond * VideoTrack::unitsPerTick),
         .width = _settings.width,
         .height = _settings.height,
         .sampleEntry = (*encoder)->sampleEntry()});
    if (_settings.systemAudio)
        addSound(_system, _settings.systemAudioBitRate, tracks);
    if (_settings.microphone)
        addSound(_microphone, _settings.microphoneBitRate, tracks);

    auto writer = Mp4Writer::create(_settings.path, std::move(tracks));
    if (!writer)
        return std::unexpected(writer.error());
    _writer = std::move(*writer);
    _video = std::make_unique<VideoTrack>(_settings, queueDepth, std::move(*encoder), *_writer, _ledger,
                                          [this](Failure reason) { fail(std::move(reason)); });
    std::size_t index = 1;
    if (_system.encoder)
        openSound(_system, index++, &CaptureLedger::noteSystemAudio);
    if (_microphone.encoder)
        openSound(_microphone, index, &CaptureLedger::noteMicrophone);
    return {};
}

// Without an encoder the movie does without the track.
void ThreadedMovieRecorder::addSound(Sound &sound, int bitRate, std::vector<TrackDescription> &tracks) const
{
    auto encoder = AacEncoder::create(_settings.sampleRate, _settings.channelCount, bitRate);
    if (!encoder)
        return;
    tracks.push_back({.timescale = static_cast<std::uint32_t>(_settings.sampleRate),
                      .mediaStart = (*encoder)->delay(),
                      .sampleEntry = (*encoder)->sampleEntry()});
    sound.encoder = std::move(*encoder);
}

void ThreadedMovieRecorder::openSound(Sound &sound, std::size_t index, bool (CaptureLedger::*note)())
{
    sound.track = std::make_unique<SoundTrack>(
        index, _settings.sampleRate, _settings.channelCount, std::move(sound.encoder), *_writer,
        [this, note] { return (_ledger.*note)(); }, [this](Failure reason) { fail(std::move(reason)); });
}

void ThreadedMovieRecorder::useSystemAudio()
{
    listen(_system, PulseCapture::Kind::speaker, {});
}

void ThreadedMovieRecorder::useMicrophone(std::optional<QString> deviceId)
{
    listen(_microphone, PulseCapture::Kind::microphone, std::move(deviceId));
}

void ThreadedMovieRecorder::listen(Sound &sound, PulseCapture::Kind kind, std::optional<QString> deviceId)
{
    if (!sound.track)
        return;
    SoundTrack *track = sound.track.get();
    PulseCapture::Events events{
        .sound = [track](std::int64_t stamp, std::span<const float> samples) { track->push(stamp, samples); },
        .restarted = [track] { track->restart(); },
        .warning =
            [this](QString text) {
                if (_events.warning)
                    _events.warning(std::move(text));
            },
    };
    sound.capture = std::make_unique<PulseCapture>(kind, std::move(deviceId), _settings.sampleRate,
                                                   _settings.channelCount, std::move(events));
}

void ThreadedMovieRecorder::begin(std::int64_t tickZero)
{
    _tickZero = tickZero;
    _video->begin(tickZero);
    for (Sound *sound : {&_system, &_microphone}) {
        if (sound->track)
            sound->track->begin(tickZero);
        if (sound->capture)
            sound->capture->start();
    }
    _upkeep = std::thread([this] { upkeep(); });
}

// Silence for sources that do not deliver, and the way to the disk.
void ThreadedMovieRecorder::upkeep()
{
    std::unique_lock lock(_lock);
    for (int round = 1; !_ended.wait_for(lock, upkeepInterval, [this] { return _ending; }); ++round) {
        lock.unlock();
        if (_ledger.counters().sessionStarted)
            for (Sound *sound : {&_system, &_microphone})
                if (sound->track)
                    sound->track->fillUntil(monotonicNow() - soundGrace);
        Result<void> kept = checkDiskReserve(_settings.path);
        if (kept && round % upkeepsPerSync == 0)
            kept = _writer->sync();
        if (!kept)
            fail(kept.error());
        lock.lock();
    }
}

void ThreadedMovieRecorder::stopUpkeep()
{
    if (!_upkeep.joinable())
        return;
    {
        const std::scoped_lock lock(_lock);
        _ending = true;
    }
    _ended.notify_one();
    _upkeep.join();
}

void ThreadedMovieRecorder::stopSound()
{
    for (Sound *sound : {&_system, &_microphone})
        if (sound->capture)
            sound->capture->stop();
}

std::int64_t ThreadedMovieRecorder::timeOf(std::int64_t tick) const
{
    return _tickZero + tick * 1'000'000'000 / _settings.framesPerSecond;
}

Result<void> ThreadedMovieRecorder::finish(std::int64_t lastTick)
{
    stopSound();
    stopUpkeep();
    const std::optional<std::int64_t> end = _video->finish(lastTick);
    if (!end)
        return failure(u"没有写入任何画面"_s);
    std::vector<std::int64_t> ends{*end};
    for (Sound *sound : {&_system, &_microphone})
        if (sound->track)
            ends.push_back(sound->track->finish(timeOf(*end / VideoTrack::unitsPerTick)));
    auto finished = _writer->finish(ends);
    if (auto state = _writer->state(); !state)
        fail(state.error());
    return finished;
}

void ThreadedMovieRecorder::fail(Failure reason)
{
    if (!_hasFailed.exchange(true) && _events.failed)
        _events.failed(std::move(reason));
}

} // namespace

Result<std::unique_ptr<MovieRecorder>> MovieRecorder::create(const MovieSettings &settings, int queueDepth,
                                                             CaptureLedger &ledger, Events events)
{
    auto recorder = std::make_unique<ThreadedMovieRecorder>(settings, ledger, std::move(events));
    if (auto opened = recorder->open(queueDepth); !opened)
        return std::unexpected(opened.error());
    return recorder;
}

} // namespace velbrix
