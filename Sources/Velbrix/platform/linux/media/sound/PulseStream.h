#pragma once

#include <QByteArray>

#include <cstdint>
#include <functional>
#include <span>
#include <vector>

struct pa_context;
struct pa_stream;

namespace velbrix {

// A recording of one source of the PulseAudio server after another. On the
// thread of the context's loop, or with its lock; closed before it is destroyed.
class PulseStream {
public:
    struct Events {
        // Float samples with the monotonic time at which the first was heard.
        std::function<void(std::int64_t stamp, std::span<const float> samples)> sound;
        std::function<void()> started;
        // The server ended it or would not start it. It is closed by then.
        std::function<void(bool hadStarted)> ended;
    };

    PulseStream(int sampleRate, int channels, Events events);
    PulseStream(const PulseStream &) = delete;
    PulseStream &operator=(const PulseStream &) = delete;

    // Closes what is open, unless it is this source. False when it cannot even
    // be asked for.
    bool open(pa_context *context, const QByteArray &source);
    void close();

private:
    void stateChanged();
    void read();
    void askForTime();
    void timeKnown();

    const int _sampleRate;
    const int _channels;
    const Events _events;
    pa_stream *_stream = nullptr;
    QByteArray _source;
    std::vector<float> _silence;
    std::uint64_t _received = 0;        // bytes
    std::vector<std::int64_t> _origins; // newest answers to when the first sample was heard
    int _readsToNextTime = 0;
    bool _hasStarted = false;
};

} // namespace velbrix
