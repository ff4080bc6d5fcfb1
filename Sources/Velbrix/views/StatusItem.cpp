#include "views/StatusItem.h"

#include "views/Theme.h"

#include <QAction>
#include <QCursor>
#include <QKeyEvent>
#include <QKeySequence>
#include <QPainter>

#include <algorithm>
#include <utility>

using namespace Qt::StringLiterals;

namespace velbrix {
namespace {

// "⌘⇧P" in the toolkit's writing, in which ⌘ is the control key elsewhere.
QKeySequence keySequence(const QString &equivalent)
{
    QString keys;
    for (const QChar character : equivalent) {
        switch (character.unicode()) {
        case u'⌘':
            keys += u"Ctrl+"_s;
            break;
        case u'⇧':
            keys += u"Shift+"_s;
            break;
        case u'⌥':
            keys += u"Alt+"_s;
            break;
        case u'⌃':
            keys += u"Meta+"_s;
            break;
        default:
            keys += character;
        }
    }
    return QKeySequence::fromString(keys, QKeySequence::PortableText);
}

QStringList orderOf(const QList<TrayMenuItem> &items)
{
    QStringList order;
    for (const TrayMenuItem &item : items)
        order.append(item.id);
    return order;
}

} // namespace

StatusItem::StatusItem(const Theme &theme, HostFamily family, std::function<void()> clicked,
                       std::function<void(const QString &id)> chosen)
    : _theme(theme), _family(family), _chosen(std::move(chosen))
{
    _menu.setObjectName(u"trayMenu"_s);
    connect(&_menu, &QMenu::aboutToShow, this, [this, clicked = std::move(clicked)] {
        _isMenuOpen = true;
        clicked();
    });
    connect(&_menu, &QMenu::aboutToHide, this, [this] { _isMenuOpen = false; });
    _menu.installEventFilter(this);
    _icon.setContextMenu(&_menu);
    _icon.setToolTip(u"Velbrix"_s);
    // Where the tray opens the menu by itself, this finds it open already.
    connect(
        &_icon, &QSystemTrayIcon::activated, this,
        [this](QSystemTrayIcon::ActivationReason reason) {
            if (reason == QSystemTrayIcon::Trigger && !_isMenuOpen)
                _menu.popup(QCursor::pos());
        },
        Qt::QueuedConnection);
    connect(&theme, &Theme::changed, this, [this] { redraw(); });
    redraw();
}

// The toolkit shows keys beside the entries of an open menu, and has them do
// nothing there.
bool StatusItem::eventFilter(QObject *watched, QEvent *event)
{
    if (event->type() == QEvent::KeyPress) {
        const QKeySequence pressed(static_cast<QKeyEvent *>(event)->keyCombination());
        for (QAction *action : _menu.actions()) {
            if (action->isEnabled() && action->shortcut() == pressed) {
                _menu.hide();
                action->trigger();
                return true;
            }
        }
    }
    return QObject::eventFilter(watched, event);
}

void StatusItem::setMenu(const QList<TrayMenuItem> &items)
{
    if (orderOf(items) != _order)
        rebuild(items);
    const QList<QAction *> actions = _menu.actions();
    for (qsizetype index = 0; index < items.size(); ++index) {
        if (items[index].id.isEmpty())
            continue;
        actions[index]->setText(items[index].title);
        actions[index]->setEnabled(items[index].isEnabled);
    }
}

void StatusItem::setRecording(bool isRecording)
{
    if (std::exchange(_isRecording, isRecording) != isRecording)
        redraw();
}

void StatusItem::rebuild(const QList<TrayMenuItem> &items)
{
    _order = orderOf(items);
    _menu.clear();
    for (const TrayMenuItem &item : items) {
        if (item.id.isEmpty()) {
            _menu.addSeparator();
            continue;
        }
        QAction *const action = _menu.addAction(item.title);
        action->setMenuRole(QAction::NoRole);
        if (!item.keyEquivalent.isEmpty())
            action->setShortcut(keySequence(item.keyEquivalent));
        connect(action, &QAction::triggered, this, [this, id = item.id] { _chosen(id); });
    }
}

// On a Mac a template, which the system colours. A panel may be dark or light
// whatever the windows are: there a light symbol in a dark outline is seen on both.
QPixmap StatusItem::symbol(int side) const
{
    const QString name = u"shippingbox.fill"_s;
    if (_family == HostFamily::macos)
        return _theme.symbol(name, side, _theme.color(ThemeColor::text), 1);
    const int outline = std::max(side / 16, 1);
    const int inner = side - 2 * outline;
    const QPixmap dark = _theme.symbol(name, inner, QColor(0, 0, 0, 200), 1);
    QPixmap drawn(side, side);
    drawn.fill(Qt::transparent);
    QPainter painter(&drawn);
    for (const int x : {0, outline, 2 * outline}) {
        for (const int y : {0, outline, 2 * outline})
            painter.drawPixmap(x, y, dark);
    }
    painter.drawPixmap(outline, outline, _theme.symbol(name, inner, QColor(0xF5, 0xF5, 0xF7), 1));
    return drawn;
}

QPixmap StatusItem::picture(int side) const
{
    QPixmap drawn = symbol(side);
    if (!_isRecording)
        return drawn;
    const double dot = side * 0.46;
    const QRectF place(side - dot, side - dot, dot, dot);
    const double gap = side * 0.07;
    QPainter painter(&drawn);
    painter.setRenderHint(QPainter::Antialiasing);
    painter.setPen(Qt::NoPen);
    painter.setCompositionMode(QPainter::CompositionMode_Clear);
    painter.drawEllipse(place.adjusted(-gap, -gap, gap, gap));
    painter.setCompositionMode(QPainter::CompositionMode_SourceOver);
    painter.setBrush(QColor(0xFF, 0x3B, 0x30));
    painter.drawEllipse(place);
    return drawn;
}

void StatusItem::redraw()
{
    QIcon icon;
    for (const int side : {16, 18, 22, 24, 32, 36, 44, 48, 64})
        icon.addPixmap(picture(side));
    // A template has no colours: the red dot needs them.
    icon.setIsMask(!_isRecording);
    _icon.setIcon(icon);
    _icon.setToolTip(_isRecording ? u"Velbrix · 录制中"_s : u"Velbrix"_s);
}

} // namespace velbrix
