// syncsource SECONDS
// Once a second the screen turns white for a tenth of a second, and at the same moment a tone of a tenth of a
// second is heard from the default speaker. What is heard leads: the flash is placed by the sound server's
// own clock.
#include <pulse/simple.h>
#include <xcb/xcb.h>

#include <chrono>
#include <cmath>
#include <cstdint>
#include <cstdio>
#include <cstdlib>
#include <numbers>
#include <thread>
#include <vector>

using namespace std::chrono_literals;

namespace {

constexpr int rate = 48000;

// Begins with a beep.
std::vector<std::int16_t> secondOfSound()
{
    std::vector<std::int16_t> samples(rate);
    for (std::size_t i = 0; i < rate / 10; ++i)
        samples[i] = static_cast<std::int16_t>(
            20000 * std::sin(2 * std::numbers::pi * 1000 * static_cast<double>(i) / rate));
    return samples;
}

// The whole screen in one colour, over all windows.
class Flash {
public:
    bool open()
    {
        _x11 = xcb_connect(nullptr, nullptr);
        if (xcb_connection_has_error(_x11))
            return false;
        const xcb_screen_t *const screen = xcb_setup_roots_iterator(xcb_get_setup(_x11)).data;
        _root = screen->root;
        _area = {0, 0, screen->width_in_pixels, screen->height_in_pixels};
        _brush = xcb_generate_id(_x11);
        constexpr std::uint32_t overWindows = XCB_SUBWINDOW_MODE_INCLUDE_INFERIORS;
        xcb_create_gc(_x11, _brush, _root, XCB_GC_SUBWINDOW_MODE, &overWindows);
        show(0x000000);
        return true;
    }

    void show(std::uint32_t color)
    {
        xcb_change_gc(_x11, _brush, XCB_GC_FOREGROUND, &color);
        xcb_poly_fill_rectangle(_x11, _root, _brush, 1, &_area);
        xcb_flush(_x11);
    }

private:
    xcb_connection_t *_x11 = nullptr;
    xcb_window_t _root = 0;
    xcb_gcontext_t _brush = 0;
    xcb_rectangle_t _area{};
};

} // namespace

int main(int argc, char **argv)
{
    if (argc != 2)
        return 2;
    const pa_sample_spec format{PA_SAMPLE_S16LE, rate, 1};
    constexpr auto any = static_cast<std::uint32_t>(-1);
    const pa_buffer_attr buffer{any, rate, any, any, any}; // half a second, as bytes
    pa_simple *const sound = pa_simple_new(nullptr, "syncsource", PA_STREAM_PLAYBACK, nullptr, "beeps",
                                           &format, nullptr, &buffer, nullptr);
    Flash flash;
    if (!flash.open() || !sound) {
        std::fputs("syncsource: no display or no sound server\n", stderr);
        return 1;
    }
    const std::vector<std::int16_t> samples = secondOfSound();
    const std::size_t bytes = samples.size() * sizeof(std::int16_t);
    pa_simple_write(sound, samples.data(), bytes, nullptr); // the server takes its time for the first
    std::puts("ready");
    std::fflush(stdout);
    for (int left = std::atoi(argv[1]); left > 0; --left) {
        // What is written now is heard after all that is still in the buffers.
        const auto heard = std::chrono::steady_clock::now() +
                           std::chrono::microseconds(pa_simple_get_latency(sound, nullptr));
        const std::jthread flasher([&] {
            std::this_thread::sleep_until(heard);
            flash.show(0xFFFFFF);
            std::this_thread::sleep_for(100ms);
            flash.show(0x000000);
        });
        pa_simple_write(sound, samples.data(), bytes, nullptr);
    }
    pa_simple_free(sound);
    return 0;
}
