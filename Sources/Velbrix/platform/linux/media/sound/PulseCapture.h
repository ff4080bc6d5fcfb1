#pragma once

#include "platform/linux/media/sound/PulseStream.h"

#include <QString>

#include <optional>

struct pa_context;
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
    void connect();
    void disconnect();
    void contextChanged();
    void retryLater();
    void chooseSource();
    void chooseDefault();
    void chooseDefault(const char *sink, const char *source);
    void openDefault(const char *source, bool isMonitor);
    void open(const char *source);
    void streamStarted();
    void streamEnded(bool hadStarted);
    void lost();

    const Kind _kind;
    const QByteArray _wanted;
    const Events _events;

    pa_threaded_mainloop *_loop = nullptr;
    // Of the loop's thread, or with its lock.
    pa_context *_context = nullptr;
    pa_time_event *_retry = nullptr;
    PulseStream _stream;
    bool _isLost = false;
};

} // namespace velbrix
