#include "views/ToastStack.h"

#include "views/Theme.h"
#include "views/components/ToastView.h"

#include <algorithm>
#include <utility>

namespace velbrix {
namespace {

constexpr int margin = 16;
constexpr int spacing = 8;

} // namespace

ToastStack::ToastStack(const Theme &theme, ToastQueue &toasts, std::function<QRect()> screen, QObject *parent)
    : QObject(parent), _theme(theme), _toasts(toasts), _screen(std::move(screen))
{
    connect(&toasts, &ToastQueue::visibleChanged, this, [this] { refresh(); });
    refresh();
}

ToastStack::~ToastStack()
{
    qDeleteAll(_views);
}

void ToastStack::refresh()
{
    const QList<Toast> wanted = _toasts.visible();
    const auto before = _views;
    for (ToastView *view : before) {
        if (std::ranges::find(wanted, view->id(), &Toast::id) == wanted.end())
            remove(view);
    }
    for (const Toast &toast : wanted) {
        if (std::ranges::find(_views, toast.id, &ToastView::id) != _views.end())
            continue;
        auto *view = new ToastView(_theme, toast);
        connect(view, &ToastView::clicked, this, [this, view] { _toasts.dismiss(view->id()); });
        connect(view, &ToastView::hovered, this, [this, view](bool inside) { hover(view, inside); });
        _views.append(view);
    }
    const QRect room = _screen();
    int y = room.top() + margin;
    for (ToastView *view : std::as_const(_views)) {
        view->slideTo(QPoint(room.right() + 1 - margin - view->width(), y));
        y += view->height() + spacing;
    }
}

void ToastStack::remove(ToastView *view)
{
    _views.removeOne(view);
    if (_hovered == view)
        hover(view, false); // nobody tells that the pointer left a window that is gone
    view->hide();
    view->deleteLater();
}

void ToastStack::hover(ToastView *view, bool inside)
{
    if (!inside && _hovered != view)
        return;
    _hovered = inside ? view : nullptr;
    _toasts.setHeld(inside);
}

} // namespace velbrix
