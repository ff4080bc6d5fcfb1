#pragma once

#include "foundation/Result.h"

#include <pulse/pulseaudio.h>

namespace velbrix {

// A way to the user's sound server for one question, driven by the thread that
// asks, so that a server that went and came back makes no difference. Starts no
// server, and gives up after five seconds.
class PulseConnection {
public:
    PulseConnection();
    ~PulseConnection();
    PulseConnection(const PulseConnection &) = delete;
    PulseConnection &operator=(const PulseConnection &) = delete;

    pa_context *context() const { return _context; }
    // Before anything is asked.
    Result<void> open();
    // Waits for the answer; the operation is the connection's from now on.
    Result<void> finish(pa_operation *operation);

private:
    bool step();
    QString reason() const;

    pa_mainloop *const _loop;
    pa_context *_context = nullptr;
    pa_time_event *_deadline = nullptr;
    bool _isExpired = false;
};

} // namespace velbrix
