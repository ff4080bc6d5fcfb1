#pragma once

#include <cstdint>
#include <functional>

struct pa_context;
struct pa_threaded_mainloop;
struct pa_time_event;

namespace velbrix {

// Is told by the sound server when devices are added, removed or become the
// default, or what programs play begins, rests or ends; nothing runs in between.
// While there is no server it looks for one, less and less often. Call from one
// thread.
class PulseWatch {
public:
    enum class Subject { devices, playback };

    // Called on a thread of its own; of playback also once in the beginning.
    PulseWatch(Subject subject, std::function<void()> changed);
    // No call comes after it.
    ~PulseWatch();
    PulseWatch(const PulseWatch &) = delete;
    PulseWatch &operator=(const PulseWatch &) = delete;

    void start();

private:
    void connect();
    void disconnect();
    void contextChanged();
    void retryLater();
    void stopRetrying();

    const Subject _subject;
    const std::function<void()> _changed;
    pa_threaded_mainloop *const _loop;
    // With the loop's lock:
    pa_context *_context = nullptr;
    pa_time_event *_retry = nullptr;
    std::uint64_t _retryDelay; // microseconds
    bool _hasServer = true;    // as far as the listener knows
};

} // namespace velbrix
