#pragma once

#include <functional>

struct pa_context;
struct pa_threaded_mainloop;

namespace velbrix {

// Hears from the sound server when devices come, go or change places; nothing
// runs in between. Call from one thread.
class PulseWatch {
public:
    // Called on a thread of its own.
    explicit PulseWatch(std::function<void()> changed);
    // No call comes after it.
    ~PulseWatch();
    PulseWatch(const PulseWatch &) = delete;
    PulseWatch &operator=(const PulseWatch &) = delete;

    // Connects unless it is connected.
    void ensureConnected();

private:
    friend struct PulseWatchCallbacks;

    void connect();
    void disconnect();
    void contextChanged();

    const std::function<void()> _changed;
    pa_threaded_mainloop *const _loop;
    pa_context *_context = nullptr; // with the loop's lock
};

} // namespace velbrix
