#include "views/StatusItem.h"

#include "views/Theme.h"

#include <QAction>
#include <QCursor>
#include <QKeySequence>
#include <QPainter>

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

StatusItem::StatusItem(const Theme &theme, std::function<void()> clicked,
                       std::function<void(const QString &id)> chosen)
    : _theme(theme), _chosen(std::move(chosen))
{
    _menu.setObjectName(u"trayMenu"_s);
    connect(&_menu, &QMenu::aboutToShow, this, [this, clicked = std::move(clicked)] {
        _isMenuOpen = true;
        clicked();
    });
    connect(&_menu, &QMenu::aboutToHide, this, [this] { _isMenuOpen = false; });
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

QPixmap StatusItem::picture(int side) const
{
    QPixmap drawn = _theme.symbol(u"shippingbox.fill"_s, side, _theme.color(ThemeColor::text), 1);
    if (!_isRecording || drawn.isNull())
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
