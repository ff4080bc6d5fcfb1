#include "app/Toast.h"

#include "foundation/NotificationCenter.h"

#include <algorithm>
#include <cmath>
#include <utility>

using namespace Qt::StringLiterals;
using namespace std::chrono_literals;

namespace velbrix {

Toast toastFromUserInfo(const QVariantMap &userInfo)
{
    Toast toast;
    toast.title = userInfo.value(u"title"_s).toString();
    toast.body = userInfo.value(u"body"_s).toString();
    toast.icon = userInfo.value(u"icon"_s).toString();
    toast.tone = userInfo.value(u"tone"_s).value<ToastTone>();
    const double seconds = userInfo.value(u"duration"_s).toDouble();
    if (std::isfinite(seconds) && seconds > 0)
        toast.duration = std::chrono::milliseconds(std::lround(std::clamp(seconds, 1.0, 60.0) * 1000));
    return toast;
}

void postBanner(NotificationCenter &center, const QString &title, const QString &body, const QString &icon,
                ToastTone tone)
{
    center.post(
        bannerToastNotification,
        {{u"title"_s, title}, {u"body"_s, body}, {u"icon"_s, icon}, {u"tone"_s, QVariant::fromValue(tone)}});
}

ToastQueue::ToastQueue(Clock &clock, QObject *parent) : QObject(parent), _clock(clock) {}

ToastQueue::~ToastQueue() = default;

void ToastQueue::show(Toast toast)
{
    const auto same = [&](const Toast &other) {
        return other.title == toast.title && other.body == toast.body;
    };
    const QList<Toast> shown = _visible;
    if (const auto found = std::ranges::find_if(shown, same); found != shown.end()) {
        _hideAt[found->id] = _clock.uptime() + toast.duration;
        scheduleHide();
        return;
    }
    if (std::ranges::any_of(_waiting, same))
        return;
    toast.id = ++_lastId;
    _waiting.append(std::move(toast));
    fill();
}

void ToastQueue::dismiss(int id)
{
    QList<Toast> shown = _visible;
    shown.removeIf([id](const Toast &toast) { return toast.id == id; });
    _hideAt.remove(id);
    _visible = shown;
    fill();
}

void ToastQueue::setHeld(bool held)
{
    if (_held == held)
        return;
    _held = held;
    if (_held) {
        _toastHideWorkItem.reset();
        return;
    }
    // Time for another look after the pointer has left.
    for (auto &hideAt : _hideAt)
        hideAt = std::max(hideAt, _clock.uptime() + 1s);
    scheduleHide();
}

void ToastQueue::clear()
{
    _toastHideWorkItem.reset();
    _waiting.clear();
    _hideAt.clear();
    _visible = QList<Toast>();
}

void ToastQueue::fill()
{
    QList<Toast> shown = _visible;
    while (shown.size() < mostVisible && !_waiting.isEmpty()) {
        shown.append(_waiting.takeFirst());
        _hideAt[shown.last().id] = _clock.uptime() + shown.last().duration;
    }
    _visible = shown;
    scheduleHide();
}

void ToastQueue::scheduleHide()
{
    _toastHideWorkItem.reset();
    if (_held || _hideAt.isEmpty())
        return;
    const auto next = *std::min_element(_hideAt.cbegin(), _hideAt.cend());
    _toastHideWorkItem = _clock.after(std::max(next - _clock.uptime(), 0ms), [this] { hideDue(); });
}

void ToastQueue::hideDue()
{
    const QList<Toast> shown = _visible;
    for (const Toast &toast : shown) {
        if (_hideAt.value(toast.id) <= _clock.uptime())
            dismiss(toast.id);
    }
}

} // namespace velbrix
