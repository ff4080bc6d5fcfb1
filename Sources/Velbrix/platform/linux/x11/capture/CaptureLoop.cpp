#include "platform/linux/x11/capture/CaptureLoop.h"

#include "platform/linux/media/recording/MonotonicTime.h"
#include "platform/linux/x11/capture/DisplaySource.h"
#include "platform/linux/x11/capture/WindowSource.h"

#include <pthread.h>

#include <algorithm>

using namespace Qt::StringLiterals;

namespace velbrix {

namespace {

QString statusName(FrameStatus status)
{
    switch (status) {
    case FrameStatus::complete:
        return u"complete"_s;
    case FrameStatus::idle:
        return u"idle"_s;
    case FrameStatus::blank:
        return u"blank"_s;
    case FrameStatus::suspended:
        return u"suspended"_s;
    case FrameStatus::stopped:
        return u"stopped"_s;
    }
    return {};
}

} // namespace

CaptureLoop::CaptureLoop(Plan plan, MovieRecorder &recorder, CaptureLedger &ledger,
                         std::shared_ptr<StopSignal> stop, Events events)
    : _plan(std::move(plan)),
      _recorder(recorder),
      _ledger(ledger),
      _stop(std::move(stop)),
      _events(std::move(events)),
      _canvas(_plan.configuration.width, _plan.configuration.height)
{
}

CaptureLoop::~CaptureLoop()
{
    requestStop();
    join();
}

void CaptureLoop::start()
{
    _thread = std::thread([this] { run(); });
}

void CaptureLoop::requestStop()
{
    _stop->request();
}

void CaptureLoop::join()
{
    const std::scoped_lock lock(_joinLock);
    if (_thread.joinable())
        _thread.join();
}

void CaptureLoop::run()
{
    pthread_setname_np(pthread_self(), "velbrix-screen");
    const Result<void> prepared = prepare();
    const Result<TickClock> ticks = prepared ? takeFirstPicture() : std::unexpected(prepared.error());
    _events.started(ticks ? Result<void>() : std::unexpected(ticks.error()));
    if (ticks) {
        std::int64_t tick = 0;
        do {
            // A tick that took long swallows those that became due meanwhile.
            tick = std::max(tick, ticks->tickAt(monotonicNow())) + 1;
        } while (_stop->sleepUntil(ticks->timeOf(tick)) && step(ticks->tickAt(monotonicNow())));
        _lastTick = ticks->tickAt(monotonicNow());
        note(FrameStatus::stopped);
    }
    // Undoes on the server what was asked for.
    _source.reset();
    _cursor.reset();
    _connection.reset();
}

Result<void> CaptureLoop::prepare()
{
    auto connection = X11Connection::open(_plan.abilities);
    if (!connection)
        return std::unexpected(connection.error());
    _connection = std::move(*connection);
    const X11Abilities &has = _connection->has();
    const CaptureFilter &filter = _plan.filter;
    if (_plan.configuration.showsCursor && has.fixes)
        _cursor = std::make_unique<CursorTracker>(*_connection);
    else if (_plan.configuration.showsCursor)
        _events.warning(u"X 服务器没有 XFixes 扩展，录像中不会出现鼠标指针"_s);
    const bool excludes = filter.excludesOwnWindows || !filter.excludedWindows.isEmpty();
    if (!filter.windowId && excludes && !has.composite)
        _events.warning(u"X 服务器没有 Composite 扩展，无法排除本应用窗口"_s);
    if (filter.windowId)
        _source = std::make_unique<WindowSource>(*_connection, *filter.windowId);
    else
        _source = std::make_unique<DisplaySource>(*_connection, filter);
    return _source->start(*_stop);
}

Result<TickClock> CaptureLoop::takeFirstPicture()
{
    constexpr int attempts = 20;
    constexpr std::int64_t pause = 10'000'000;
    for (int attempt = 0; attempt < attempts; ++attempt) {
        const SourceUpdate update = updateSource();
        if (update.ended)
            return std::unexpected(*update.ended);
        if (update.status == FrameStatus::complete) {
            std::vector<PixelRect> changed = draw(update);
            const std::int64_t zero = monotonicNow();
            _recorder.begin(zero);
            note(update.status);
            submit(std::move(changed), 0);
            return TickClock(zero, _plan.configuration.framesPerSecond);
        }
        if (!_stop->sleepUntil(monotonicNow() + pause))
            return failure(u"录制已取消"_s);
    }
    return failure(u"无法取得屏幕画面"_s);
}

bool CaptureLoop::step(std::int64_t tick)
{
    const SourceUpdate update = updateSource();
    if (!_connection->isAlive()) {
        _events.ended(Failure{u"与 X 服务器的连接已断开"_s});
        return false;
    }
    if (update.ended) {
        _events.ended(*update.ended);
        return false;
    }
    std::vector<PixelRect> changed = draw(update);
    // A pointer that moves over a still picture makes a new picture, too.
    note(update.status == FrameStatus::idle && !changed.empty() ? FrameStatus::complete : update.status);
    submit(std::move(changed), tick);
    return true;
}

void CaptureLoop::readEvents()
{
    while (const auto event = _connection->nextEvent()) {
        _source->handleEvent(*event);
        if (_cursor)
            _cursor->handleEvent(*event);
    }
}

SourceUpdate CaptureLoop::updateSource()
{
    readEvents();
    if (_cursor)
        _cursor->request();
    SourceUpdate update = _source->update();
    // A window that opened while the picture was taken may be in it.
    readEvents();
    if (_source->isOutdated()) {
        SourceUpdate again = _source->update();
        again.changed.insert(again.changed.end(), update.changed.begin(), update.changed.end());
        if (again.status == FrameStatus::idle)
            again.status = update.status;
        update = std::move(again);
    }
    if (_cursor)
        _cursor->collect();
    return update;
}

std::vector<PixelRect> CaptureLoop::draw(const SourceUpdate &update)
{
    const BitmapView picture = _source->picture();
    if (!picture.pixels || update.status == FrameStatus::blank)
        return {};
    std::vector<PixelRect> parts = update.changed;
    if (!_cursor)
        return _canvas.draw(picture, parts);

    const CursorImage &image = _cursor->image();
    PixelRect cursor;
    if (const auto place = _source->locate(_cursor->pointer()))
        cursor = {place->x - image.hotX, place->y - image.hotY, image.width, image.height};
    if (!intersects(cursor, {0, 0, picture.width, picture.height}))
        cursor = {};
    if (cursor != _shownCursor || (!isEmpty(cursor) && _shownCursorSerial != _cursor->imageSerial())) {
        parts.push_back(_shownCursor);
        parts.push_back(cursor);
    }
    _shownCursor = cursor;
    _shownCursorSerial = _cursor->imageSerial();
    parts = simplified(std::move(parts));
    if (parts.empty())
        return {};
    if (std::ranges::none_of(parts, [&cursor](const PixelRect &part) { return intersects(part, cursor); }))
        return _canvas.draw(picture, parts);
    const PaintedCursor painted(picture, image, cursor.x, cursor.y);
    return _canvas.draw(picture, parts);
}

void CaptureLoop::submit(std::vector<PixelRect> changed, std::int64_t tick)
{
    changed.insert(changed.end(), _carried.begin(), _carried.end());
    _carried.clear();
    if (changed.empty())
        return;
    changed = simplified(std::move(changed));
    if (!_recorder.submit(_canvas.share(), changed, tick))
        _carried = std::move(changed);
}

void CaptureLoop::note(FrameStatus status)
{
    _ledger.noteCallback();
    _ledger.noteFrameStatus(statusName(status));
}

} // namespace velbrix
