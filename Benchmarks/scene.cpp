// scene MODE FPS SECONDS: paints test content over the whole screen and counts its ticks in the top left
// corner.
//   scroll  a page of text and pictures moves by 8 pixels at every tick: all pixels change
//   part    a picture of 1280x720 moves in the middle of a still page
//   desk    typing, pointer moves and a panel every 3 s: little changes
//   idle    nothing changes
//   pointer the pointer moves over a still page at every tick
//   rest    scrolls for six seconds, then nothing changes
//   whole   as desk, but the whole screen is painted at every tick, as some compositors do
// The count is a row of 24 squares of 16 pixels, lowest bit first, white is 1. "ready T" is printed when the
// page stands; T is the monotonic time of tick 0 in seconds. Every tick is the same picture in every run.
#include <xcb/shm.h>
#include <xcb/xcb.h>
#include <xcb/xtest.h>

#include <sys/ipc.h>
#include <sys/shm.h>
#include <time.h>

#include <cmath>
#include <cstdint>
#include <cstdio>
#include <cstdlib>
#include <cstring>
#include <new>
#include <string_view>

namespace {

constexpr int barcodeBits = 24;
constexpr int barcodeSquare = 16;
constexpr std::int64_t second = 1'000'000'000;

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

std::uint32_t rgb(double red, double green, double blue)
{
    return (static_cast<std::uint32_t>(red) << 16) | (static_cast<std::uint32_t>(green) << 8) |
           static_cast<std::uint32_t>(blue);
}

// The same numbers in every run.
class Dice {
public:
    int below(int limit)
    {
        _state = _state * 1664525U + 1013904223U;
        return static_cast<int>((_state >> 8) % static_cast<std::uint32_t>(limit));
    }

private:
    std::uint32_t _state = 20240607;
};

struct Place {
    int x;
    int y;
    int width;
    int height;
};

class Screen {
public:
    Screen() : _connection(xcb_connect(nullptr, nullptr))
    {
        if (xcb_connection_has_error(_connection) != 0) {
            std::fputs("scene: no display\n", stderr);
            std::exit(1);
        }
        _screen = xcb_setup_roots_iterator(xcb_get_setup(_connection)).data;
    }
    ~Screen() { xcb_disconnect(_connection); }
    Screen(const Screen &) = delete;
    Screen &operator=(const Screen &) = delete;

    xcb_connection_t *xcb() const { return _connection; }
    int width() const { return _screen->width_in_pixels; }
    int height() const { return _screen->height_in_pixels; }

    // Above everything and outside the window manager's reach.
    xcb_window_t makeWindow(Place place)
    {
        const xcb_window_t window = xcb_generate_id(_connection);
        const std::uint32_t values[] = {_screen->black_pixel, 1};
        xcb_create_window(_connection, XCB_COPY_FROM_PARENT, window, _screen->root,
                          static_cast<std::int16_t>(place.x), static_cast<std::int16_t>(place.y),
                          static_cast<std::uint16_t>(place.width), static_cast<std::uint16_t>(place.height),
                          0, XCB_WINDOW_CLASS_INPUT_OUTPUT, _screen->root_visual,
                          XCB_CW_BACK_PIXEL | XCB_CW_OVERRIDE_REDIRECT, values);
        xcb_map_window(_connection, window);
        if (_context == XCB_NONE) {
            _context = xcb_generate_id(_connection);
            xcb_create_gc(_connection, _context, window, 0, nullptr);
        }
        return window;
    }

    xcb_pixmap_t makePixmap(int width, int height)
    {
        const xcb_pixmap_t pixmap = xcb_generate_id(_connection);
        xcb_create_pixmap(_connection, 24, pixmap, _screen->root, static_cast<std::uint16_t>(width),
                          static_cast<std::uint16_t>(height));
        return pixmap;
    }
    // All of the screen.
    void copy(xcb_pixmap_t from, xcb_window_t to)
    {
        xcb_copy_area(_connection, from, to, _context, 0, 0, 0, 0, _screen->width_in_pixels,
                      _screen->height_in_pixels);
    }

    xcb_gcontext_t context() const { return _context; }

    void movePointer(int x, int y)
    {
        xcb_test_fake_input(_connection, XCB_MOTION_NOTIFY, 0, XCB_CURRENT_TIME, _screen->root,
                            static_cast<std::int16_t>(x), static_cast<std::int16_t>(y), 0);
    }

    // Returns when the server has done all of it.
    void finish()
    {
        std::free(xcb_get_input_focus_reply(_connection, xcb_get_input_focus(_connection), nullptr));
    }

private:
    xcb_connection_t *_connection;
    xcb_screen_t *_screen = nullptr;
    xcb_gcontext_t _context = XCB_NONE;
};

// Pixels that the server reads without a copy.
class Picture {
public:
    Picture(Screen &screen, int width, int height) : _screen(screen), _width(width), _height(height)
    {
        const std::size_t bytes = static_cast<std::size_t>(width) * static_cast<std::size_t>(height) * 4;
        const int handle = shmget(IPC_PRIVATE, bytes, IPC_CREAT | 0600);
        if (handle < 0)
            throw std::bad_alloc();
        _pixels = static_cast<std::uint32_t *>(shmat(handle, nullptr, 0));
        _id = xcb_generate_id(screen.xcb());
        xcb_shm_attach(screen.xcb(), _id, static_cast<std::uint32_t>(handle), 0);
        screen.finish();
        shmctl(handle, IPC_RMID, nullptr);
    }
    ~Picture() { shmdt(_pixels); }
    Picture(const Picture &) = delete;
    Picture &operator=(const Picture &) = delete;

    int width() const { return _width; }
    int height() const { return _height; }
    bool holds(int x, int y) const { return x >= 0 && x < _width && y >= 0 && y < _height; }
    std::uint32_t &at(int x, int y) { return _pixels[static_cast<std::ptrdiff_t>(y) * _width + x]; }

    void put(xcb_window_t window, Place from, int x, int y)
    {
        xcb_shm_put_image(_screen.xcb(), window, _screen.context(), static_cast<std::uint16_t>(_width),
                          static_cast<std::uint16_t>(_height), static_cast<std::uint16_t>(from.x),
                          static_cast<std::uint16_t>(from.y), static_cast<std::uint16_t>(from.width),
                          static_cast<std::uint16_t>(from.height), static_cast<std::int16_t>(x),
                          static_cast<std::int16_t>(y), 24, XCB_IMAGE_FORMAT_Z_PIXMAP, 0, _id, 0);
    }

private:
    Screen &_screen;
    int _width;
    int _height;
    std::uint32_t *_pixels = nullptr;
    xcb_shm_seg_t _id = XCB_NONE;
};

constexpr int lineHeight = 20;
constexpr int glyphWidth = 9;
constexpr int glyphHeight = 14;

void paintGlyph(Picture &page, Dice &dice, int left, int top)
{
    for (int stroke = 0; stroke < 3; ++stroke) {
        const int x = left + dice.below(6);
        const int y = top + dice.below(12);
        const int stepX = dice.below(3) - 1;
        const int stepY = dice.below(3) - 1;
        const int length = 4 + dice.below(6);
        for (int i = 0; i < length; ++i) {
            const int dotX = x + stepX * i;
            const int dotY = y + stepY * i;
            if (dotX < left || dotX >= left + glyphWidth - 1 || dotY < top || dotY >= top + glyphHeight)
                continue;
            page.at(dotX, dotY) = 0x202028;
            page.at(dotX + 1, dotY) = 0x707078;
        }
    }
}

void paintText(Picture &page, Dice &dice)
{
    for (int top = 10; top + glyphHeight < page.height(); top += lineHeight) {
        int x = 20;
        while (x < page.width() - 120) {
            for (int letters = 2 + dice.below(9); letters > 0; --letters, x += glyphWidth)
                paintGlyph(page, dice, x, top);
            x += glyphWidth;
        }
    }
}

void paintPhoto(Picture &page, Place place, double variant)
{
    for (int y = 0; y < place.height; ++y) {
        for (int x = 0; x < place.width; ++x) {
            const double red = 128 + 100 * std::sin(x * 0.03 + variant);
            const double green = 128 + 100 * std::sin(y * 0.05 + variant * 2);
            const double blue = 128 + 80 * std::cos((x + y) * 0.02 - variant);
            if (page.holds(place.x + x, place.y + y))
                page.at(place.x + x, place.y + y) = rgb(red, green, blue);
        }
    }
}

void paintPage(Picture &page, Dice &dice)
{
    for (int y = 0; y < page.height(); ++y) {
        const int paper = 250 - y % 400 / 40;
        for (int x = 0; x < page.width(); ++x)
            page.at(x, y) = rgb(paper, paper, paper + 3);
    }
    paintText(page, dice);
    for (int i = 0; i < 9; ++i) {
        const Place place{dice.below(page.width() - 500) + 100, dice.below(page.height() - 260), 360, 220};
        paintPhoto(page, place, i);
    }
}

class Scene {
public:
    Scene(std::string_view mode, double fps)
        : _mode(mode),
          _restTicks(static_cast<int>(6 * fps)),
          _window(_screen.makeWindow({0, 0, _screen.width(), _screen.height()})),
          _target(mode == "whole" ? _screen.makePixmap(_screen.width(), _screen.height()) : _window),
          // A window of its own: the page is never seen without its count.
          _countWindow(_screen.makeWindow({0, 0, barcodeBits * barcodeSquare, barcodeSquare})),
          _page(_screen, _screen.width(), _screen.height() * 3),
          _barcode(_screen, barcodeBits * barcodeSquare, barcodeSquare),
          _video(_screen, 1280, mode == "part" ? 720 * videoFrames : 1)
    {
        paintPage(_page, _dice);
        if (mode == "part")
            for (int i = 0; i < videoFrames; ++i)
                paintPhoto(_video, {0, 720 * i, 1280, 720}, i * 0.4);
        showPage(0);
        if (_target != _window)
            _screen.copy(_target, _window);
        showCount(0);
        _screen.finish();
    }

    void tick(int count)
    {
        if (_mode == "pointer") {
            circlePointer(count);
            _screen.finish();
            return;
        }
        if (_mode == "idle" || (_mode == "rest" && count >= _restTicks))
            return;
        if (_mode == "scroll" || _mode == "rest")
            showPage(count * 8 % (_screen.height() * 2));
        else if (_mode == "part")
            _video.put(_window, {0, 720 * (count % videoFrames), 1280, 720}, (_screen.width() - 1280) / 2,
                       (_screen.height() - 720) / 2);
        else
            workAtDesk(count);
        if (_target != _window)
            _screen.copy(_target, _window);
        showCount(count);
        _screen.finish();
    }

private:
    static constexpr int videoFrames = 16;

    void showPage(int top) { _page.put(_target, {0, top, _screen.width(), _screen.height()}, 0, 0); }

    void showCount(int count)
    {
        for (int y = 0; y < barcodeSquare; ++y)
            for (int x = 0; x < barcodeBits * barcodeSquare; ++x)
                _barcode.at(x, y) = ((count >> (x / barcodeSquare)) & 1) != 0 ? 0xffffff : 0;
        _barcode.put(_countWindow, {0, 0, barcodeBits * barcodeSquare, barcodeSquare}, 0, 0);
    }

    void circlePointer(int count)
    {
        const double middleX = _screen.width() / 2.0;
        const double middleY = _screen.height() / 2.0;
        _screen.movePointer(static_cast<int>(middleX + middleX / 2 * std::cos(count * 0.05)),
                            static_cast<int>(middleY + middleY / 2 * std::sin(count * 0.05)));
    }

    void workAtDesk(int count)
    {
        const int middleX = _screen.width() / 2;
        const int middleY = _screen.height() / 2;
        if (count % 5 == 0) {
            const int letter = count / 5;
            const Place glyph{20 + glyphWidth * _dice.below(100), 10 + lineHeight * _dice.below(140),
                              glyphWidth, glyphHeight};
            _page.put(_target, glyph, 200 + letter % 90 * glyphWidth, 300 + letter / 90 % 20 * lineHeight);
        }
        if (count / 60 % 2 == 0)
            circlePointer(count);
        if (count % 180 == 0)
            _page.put(_target, {middleX / 2, _dice.below(_screen.height() * 2 - 400), 700, 400},
                      middleX * 8 / 7, middleY);
    }

    std::string_view _mode;
    int _restTicks;
    Screen _screen;
    Dice _dice;
    xcb_window_t _window;
    xcb_drawable_t _target; // of what is painted
    xcb_window_t _countWindow;
    Picture _page;
    Picture _barcode;
    Picture _video;
};

} // namespace

int main(int argc, char **argv)
{
    const std::string_view mode = argc == 4 ? argv[1] : "";
    const double fps = argc == 4 ? std::atof(argv[2]) : 0;
    const bool isKnown = mode == "scroll" || mode == "part" || mode == "desk" || mode == "idle" ||
                         mode == "rest" || mode == "whole" || mode == "pointer";
    if (!isKnown || fps <= 0) {
        std::fputs("usage: scene scroll|part|desk|idle|rest|whole|pointer FPS SECONDS\n", stderr);
        return 2;
    }
    Scene scene(mode, fps);
    const auto period = static_cast<std::int64_t>(static_cast<double>(second) / fps);
    const std::int64_t start = monotonicNow() + period;
    const std::int64_t end =
        start + static_cast<std::int64_t>(std::atof(argv[3]) * static_cast<double>(second));
    std::printf("ready %.6f\n", static_cast<double>(start) / static_cast<double>(second));
    std::fflush(stdout);
    for (int count = 0; start + count * period < end; ++count) {
        sleepUntil(start + count * period);
        scene.tick(count);
    }
    return 0;
}
