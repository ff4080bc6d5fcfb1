// flashbeep SECONDS: a white flash over the whole screen and a 1 kHz beep, 0.1 s long, at the same instants
// once a second, the beep on the default sound output.
#include <pulse/pulseaudio.h>
#include <xcb/xcb.h>

#include <time.h>

#include <cmath>
#include <cstdint>
#include <cstdio>
#include <cstdlib>
#include <numbers>
#include <vector>

namespace {

constexpr std::int64_t second = 1'000'000'000;
constexpr std::int64_t length = second / 10;
constexpr int rate = 48000;

std::int64_t monotonicNow()
{
    timespec time{};
    clock_gettime(CLOCK_MONOTONIC, &time);
    return time.tv_sec * second + time.tv_nsec;
}

void sleepUntil(std::int64_t instant)
{
    const timespec time{.tv_sec = instant / second, .tv_nsec = instant % second};
    clock_nanosleep(CLOCK_MONOTONIC, TIMER_ABSTIME, &time, nullptr);
}

// Plays on its own thread; each sample is placed by the instant at which it will be heard.
class Beeper {
public:
    explicit Beeper(std::int64_t start) : _start(start), _loop(pa_threaded_mainloop_new())
    {
        pa_threaded_mainloop_lock(_loop);
        pa_threaded_mainloop_start(_loop);
        _context = pa_context_new(pa_threaded_mainloop_get_api(_loop), "flashbeep");
        pa_context_set_state_callback(_context, [](pa_context *, void *loop) { signal(loop); }, _loop);
        pa_context_connect(_context, nullptr, PA_CONTEXT_NOAUTOSPAWN, nullptr);
        while (PA_CONTEXT_IS_GOOD(pa_context_get_state(_context)) &&
               pa_context_get_state(_context) != PA_CONTEXT_READY)
            pa_threaded_mainloop_wait(_loop);
        if (pa_context_get_state(_context) != PA_CONTEXT_READY) {
            std::fputs("flashbeep: no sound server\n", stderr);
            std::exit(1);
        }
        play();
        pa_threaded_mainloop_unlock(_loop);
    }
    ~Beeper()
    {
        pa_threaded_mainloop_stop(_loop);
        pa_stream_unref(_stream);
        pa_context_unref(_context);
        pa_threaded_mainloop_free(_loop);
    }
    Beeper(const Beeper &) = delete;
    Beeper &operator=(const Beeper &) = delete;

private:
    static void signal(void *loop)
    {
        pa_threaded_mainloop_signal(static_cast<pa_threaded_mainloop *>(loop), 0);
    }

    void play()
    {
        const pa_sample_spec format{.format = PA_SAMPLE_S16LE, .rate = rate, .channels = 1};
        _stream = pa_stream_new(_context, "beep", &format, nullptr);
        pa_stream_set_write_callback(
            _stream,
            [](pa_stream *, std::size_t bytes, void *self) { static_cast<Beeper *>(self)->write(bytes / 2); },
            this);
        pa_buffer_attr buffer{};
        buffer.maxlength = buffer.prebuf = buffer.minreq = buffer.fragsize = UINT32_MAX;
        buffer.tlength = rate * 2 / 20;
        constexpr int flags =
            PA_STREAM_ADJUST_LATENCY | PA_STREAM_AUTO_TIMING_UPDATE | PA_STREAM_INTERPOLATE_TIMING;
        pa_stream_connect_playback(_stream, nullptr, &buffer, static_cast<pa_stream_flags_t>(flags), nullptr,
                                   nullptr);
    }

    void write(std::size_t count)
    {
        followServer();
        std::vector<std::int16_t> samples(count);
        for (std::int16_t &sample : samples) {
            const std::int64_t time = _firstHeard + _written++ * second / rate - _start;
            if (_firstHeard != 0 && time >= 0 && time % second < length)
                sample = static_cast<std::int16_t>(
                    20000 * std::sin(2000 * std::numbers::pi * static_cast<double>(time % second) / second));
        }
        pa_stream_write(_stream, samples.data(), count * 2, nullptr, 0, PA_SEEK_RELATIVE);
    }

    void followServer()
    {
        pa_usec_t latency = 0;
        int isNegative = 0;
        if (pa_stream_get_latency(_stream, &latency, &isNegative) != 0)
            return;
        const std::int64_t ahead = static_cast<std::int64_t>(latency) * 1000 * (isNegative != 0 ? -1 : 1);
        const std::int64_t firstHeard = monotonicNow() + ahead - _written * second / rate;
        if (std::abs(firstHeard - _firstHeard) > 3'000'000)
            _firstHeard = firstHeard;
    }

    std::int64_t _start;
    std::int64_t _firstHeard = 0;
    std::int64_t _written = 0;
    pa_threaded_mainloop *_loop;
    pa_context *_context = nullptr;
    pa_stream *_stream = nullptr;
};

class Flasher {
public:
    Flasher() : _connection(xcb_connect(nullptr, nullptr))
    {
        const xcb_screen_t *screen = xcb_setup_roots_iterator(xcb_get_setup(_connection)).data;
        _area = {0, 0, screen->width_in_pixels, screen->height_in_pixels};
        _window = xcb_generate_id(_connection);
        const std::uint32_t values[] = {screen->black_pixel, 1};
        xcb_create_window(_connection, XCB_COPY_FROM_PARENT, _window, screen->root, 0, 0, _area.width,
                          _area.height, 0, XCB_WINDOW_CLASS_INPUT_OUTPUT, screen->root_visual,
                          XCB_CW_BACK_PIXEL | XCB_CW_OVERRIDE_REDIRECT, values);
        xcb_map_window(_connection, _window);
        _context = xcb_generate_id(_connection);
        xcb_create_gc(_connection, _context, _window, 0, nullptr);
        xcb_flush(_connection);
    }
    ~Flasher() { xcb_disconnect(_connection); }
    Flasher(const Flasher &) = delete;
    Flasher &operator=(const Flasher &) = delete;

    void show(bool isBright)
    {
        const std::uint32_t colour = isBright ? 0xffffff : 0;
        xcb_change_gc(_connection, _context, XCB_GC_FOREGROUND, &colour);
        xcb_poly_fill_rectangle(_connection, _window, _context, 1, &_area);
        xcb_flush(_connection);
    }

private:
    xcb_connection_t *_connection;
    xcb_rectangle_t _area{};
    xcb_window_t _window = XCB_NONE;
    xcb_gcontext_t _context = XCB_NONE;
};

} // namespace

int main(int argc, char **argv)
{
    const double seconds = argc == 2 ? std::atof(argv[1]) : 0;
    if (seconds <= 0) {
        std::fputs("usage: flashbeep SECONDS\n", stderr);
        return 2;
    }
    const std::int64_t start = monotonicNow() + second;
    const Beeper beeper(start);
    Flasher flasher;
    for (std::int64_t i = 0; static_cast<double>(i) < seconds; ++i) {
        sleepUntil(start + i * second);
        flasher.show(true);
        sleepUntil(start + i * second + length);
        flasher.show(false);
    }
    return 0;
}
