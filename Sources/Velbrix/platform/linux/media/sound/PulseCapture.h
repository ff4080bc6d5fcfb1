#pragma once

#include <QByteArray>
#include <QString>

#include <cstddef>
#include <cstdint>
#include <functional>
#include <memory>
#include <optional>
#include <span>
#include <vector>

struct pa_context;
struct pa_operation;
struct pa_stream;
struct pa_threaded_mainloop;
struct pa_time_event;

namespace velbrix {

// Sound from the PulseAudio server: what the default speaker plays, or a
// microphone. Follows the default device when it changes, and comes back when a
// device or the server does. Float samples with the monotonic time of the first.
class PulseCapture {
public:
    enum class Kind { speaker, microphone };

    // Called on the capture's own thread.
    struct Events {
        std::function<void(std::int64_t stamp, std::span<const float> samples)> sound;
        // What follows comes from another stream.
        std::function<void()> restarted;
        // In words for the user: the source was lost or came back.
        std::function<void(QString)> warning;
    };

    // The microphone with this name, else the default one.
    PulseCapture(Kind kind, std::optional<QString> deviceId, int sampleRate, int channels, Events events);
    // No event comes after it.
    ~PulseCapture();
    PulseCapture(const PulseCapture &) = delete;
    PulseCapture &operator=(const PulseCapture &) = delete;

    void start();
    void stop();

private:
    friend struct PulseCaptureCallbacks;

    void connect();
    void disconnect();
    void contextChanged();
    void retryLater();
    void chooseSource();
    void chooseDefault();
    void serverKnown(const char *defaultSink, const char *defaultSource);
    void sourceFound(const char *name, bool isMonitor);
    void open(const QByteArray &source);
    void close();
    void streamChanged();
    void read();
    void askForTime();
    void timeKnown();
    void lost();
    void run(pa_operation *operation) const;

    const Kind _kind;
    const QByteArray _wanted;
    const int _sampleRate;
    const int _channels;
    const Events _events;

    pa_threaded_mainloop *_loop = nullptr;
    // Of the loop's thread, or with its lock.
    pa_context *_context = nullptr;
    pa_stream *_stream = nullptr;
    pa_time_event *_retry = nullptr;
    QByteArray _source;
    std::vector<float> _silence;
    std::uint64_t _received = 0;        // bytes of the stream
    std::vector<std::int64_t> _origins; // newest answers to when the stream's first sample was heard
    int _readsToNextTime = 0;
    bool _isRunning = false; // the stream has delivered
    bool _isLost = false;
};

} // namespace velbrix
