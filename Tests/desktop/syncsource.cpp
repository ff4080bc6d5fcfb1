// syncsource SECONDS
// Once a second the screen turns white for a tenth of a second, and at the same moment a tone of a tenth of a
// second is heard from the default speaker. What is heard leads: the flash is placed by the sound server's
// own clock.
#include <pulse/pulseaudio.h>
#include <xcb/xcb.h>

#include <chrono>
#include <cmath>
#include <cstdint>
#include <cstdio>
#include <cstdlib>
#include <numbers>
#include <thread>
#include <vector>

namespace {

constexpr std::uint32_t rate = 48000;
constexpr std::uint32_t tone = 1000;
constexpr std::uint32_t beepLength = rate / 10;
constexpr std::uint64_t second = 1'000'000;

// A stream that beeps at each of its whole seconds.
class Beeper {
public:
    bool start()
    {
        _loop = pa_threaded_mainloop_new();
        _context = pa_context_new(pa_threaded_mainloop_get_api(_loop), "syncsource");
        pa_context_set_state_callback(_context, [](pa_context *, void *loop) { wake(loop); }, _loop);
        pa_threaded_mainloop_lock(_loop);
        const bool isReady = pa_context_connect(_context, nullptr, PA_CONTEXT_NOAUTOSPAWN, nullptr) == 0 &&
                             pa_threaded_mainloop_start(_loop) == 0 && connectContext() && connectStream();
        pa_threaded_mainloop_unlock(_loop);
        return isReady;
    }

    // Microseconds of the stream that have been heard.
    std::uint64_t heard()
    {
        pa_usec_t time = 0;
        pa_threaded_mainloop_lock(_loop);
        if (pa_stream_get_time(_stream, &time) != 0)
            time = 0;
        pa_threaded_mainloop_unlock(_loop);
        return time;
    }

private:
    static void wake(void *loop)
    {
        pa_threaded_mainloop_signal(static_cast<pa_threaded_mainloop *>(loop), 0);
    }

    bool connectContext()
    {
        while (pa_context_get_state(_context) != PA_CONTEXT_READY) {
            if (!PA_CONTEXT_IS_GOOD(pa_context_get_state(_context)))
                return false;
            pa_threaded_mainloop_wait(_loop);
        }
        return true;
    }

    bool connectStream()
    {
        const pa_sample_spec format{PA_SAMPLE_S16LE, rate, 1};
        _stream = pa_stream_new(_context, "beeps", &format, nullptr);
        pa_stream_set_state_callback(_stream, [](pa_stream *, void *loop) { wake(loop); }, _loop);
        pa_stream_set_write_callback(
            _stream,
            [](pa_stream *, std::size_t bytes, void *self) { static_cast<Beeper *>(self)->write(bytes); },
            this);
        constexpr auto any = static_cast<std::uint32_t>(-1);
        const pa_buffer_attr buffer{any, rate / 10 * 2, any, any, any};
        const auto flags = static_cast<pa_stream_flags_t>(
            PA_STREAM_ADJUST_LATENCY | PA_STREAM_AUTO_TIMING_UPDATE | PA_STREAM_INTERPOLATE_TIMING);
        if (pa_stream_connect_playback(_stream, nullptr, &buffer, flags, nullptr, nullptr) != 0)
            return false;
        while (pa_stream_get_state(_stream) != PA_STREAM_READY) {
            if (!PA_STREAM_IS_GOOD(pa_stream_get_state(_stream)))
                return false;
            pa_threaded_mainloop_wait(_loop);
        }
        return true;
    }

    void write(std::size_t bytes)
    {
        std::vector<std::int16_t> samples(bytes / sizeof(std::int16_t));
        for (std::int16_t &sample : samples) {
            const std::uint64_t place = _written++ % rate;
            const double angle = 2 * std::numbers::pi * tone * static_cast<double>(place) / rate;
            sample =
                place < beepLength ? static_cast<std::int16_t>(20000 * std::sin(angle)) : std::int16_t{0};
        }
        pa_stream_write(_stream, samples.data(), samples.size() * sizeof(std::int16_t), nullptr, 0,
                        PA_SEEK_RELATIVE);
    }

    pa_threaded_mainloop *_loop = nullptr;
    pa_context *_context = nullptr;
    pa_stream *_stream = nullptr;
    std::uint64_t _written = 0;
};

// A black picture over the whole screen that can turn white.
class Flash {
public:
    bool open()
    {
        _x11 = xcb_connect(nullptr, nullptr);
        if (xcb_connection_has_error(_x11))
            return false;
        const xcb_screen_t *const screen = xcb_setup_roots_iterator(xcb_get_setup(_x11)).data;
        _area = {0, 0, screen->width_in_pixels, screen->height_in_pixels};
        _window = xcb_generate_id(_x11);
        const std::uint32_t values[] = {screen->black_pixel, 1};
        xcb_create_window(_x11, XCB_COPY_FROM_PARENT, _window, screen->root, 0, 0, _area.width, _area.height,
                          0, XCB_WINDOW_CLASS_INPUT_OUTPUT, screen->root_visual,
                          XCB_CW_BACK_PIXEL | XCB_CW_OVERRIDE_REDIRECT, values);
        xcb_map_window(_x11, _window);
        _brush = xcb_generate_id(_x11);
        xcb_create_gc(_x11, _brush, _window, 0, nullptr);
        xcb_flush(_x11);
        return true;
    }

    void show(std::uint32_t color)
    {
        xcb_change_gc(_x11, _brush, XCB_GC_FOREGROUND, &color);
        xcb_poly_fill_rectangle(_x11, _window, _brush, 1, &_area);
        xcb_flush(_x11);
    }

private:
    xcb_connection_t *_x11 = nullptr;
    xcb_window_t _window = 0;
    xcb_gcontext_t _brush = 0;
    xcb_rectangle_t _area{};
};

} // namespace

int main(int argc, char **argv)
{
    if (argc != 2)
        return 2;
    Flash flash;
    Beeper beeper;
    if (!flash.open() || !beeper.start()) {
        std::fputs("syncsource: no display or no sound server\n", stderr);
        return 1;
    }
    std::puts("ready");
    std::fflush(stdout);
    const auto end = std::chrono::steady_clock::now() + std::chrono::seconds(std::atoi(argv[1]));
    while (std::chrono::steady_clock::now() < end) {
        const std::uint64_t left = second - beeper.heard() % second;
        std::this_thread::sleep_for(std::chrono::microseconds(left));
        flash.show(0xFFFFFF);
        std::this_thread::sleep_for(std::chrono::milliseconds(100));
        flash.show(0x000000);
    }
    return 0;
}
