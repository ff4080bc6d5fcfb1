#include "views/uninstall/AppRows.h"

#include "foundation/Text.h"
#include "views/ShownText.h"
#include "views/Theme.h"
#include "views/components/RowList.h"

#include <QMouseEvent>
#include <QPainter>

#include <algorithm>
#include <iterator>

using namespace Qt::StringLiterals;

namespace velbrix {
namespace {

constexpr int side = 36;
constexpr int buttonWidth = 68;
constexpr int buttonHeight = 28;
constexpr int sizeWidth = 84;

} // namespace

int AppRows::rowCount(const QModelIndex &parent) const
{
    return parent.isValid() ? 0 : static_cast<int>(_apps.size());
}

QVariant AppRows::data(const QModelIndex &index, int role) const
{
    const AppInfo &row = app(index);
    switch (role) {
    case Qt::DisplayRole:
        return row.name;
    case Qt::ToolTipRole:
        return plainTip(oneLine(row.path));
    case Qt::AccessibleTextRole: {
        QStringList words{row.name, u"版本 "_s + row.version, sizeText(row)};
        if (!row.source.manager.isEmpty())
            words.append(u"由 %1 管理"_s.arg(row.source.manager));
        if (isRunning(index))
            words.append(u"正在运行"_s);
        return words.join(u"，"_s);
    }
    case Qt::AccessibleDescriptionRole:
        return u"按回车键卸载"_s;
    default:
        return {};
    }
}

void AppRows::replace(const QList<AppInfo> &apps)
{
    if (apps == _apps)
        return;
    beginResetModel();
    _apps = apps;
    endResetModel();
}

void AppRows::setRunning(const QSet<QString> &paths)
{
    if (paths == _running)
        return;
    _running = paths;
    if (!_apps.isEmpty())
        Q_EMIT dataChanged(index(0), index(rowCount() - 1));
}

QModelIndex AppRows::find(const QString &path) const
{
    const auto found = std::ranges::find(_apps, path, &AppInfo::path);
    return found == _apps.end() ? QModelIndex()
                                : index(static_cast<int>(std::distance(_apps.begin(), found)));
}

QString sizeText(const AppInfo &app)
{
    return app.size > 0 ? formatByteCount(app.size) : u"—"_s;
}

AppRow::AppRow(const Theme &theme, RowList &list, const AppRows &rows)
    : QStyledItemDelegate(&list), _theme(theme), _list(list), _rows(rows)
{
}

QSize AppRow::sizeHint(const QStyleOptionViewItem &, const QModelIndex &) const
{
    return {300, height};
}

QRect AppRow::buttonRect(const QRect &row)
{
    return {row.right() - buttonWidth - 7, row.center().y() - buttonHeight / 2 + 1, buttonWidth,
            buttonHeight};
}

void AppRow::paint(QPainter *painter, const QStyleOptionViewItem &option, const QModelIndex &index) const
{
    painter->save();
    _list.drawBack(*painter, option);
    painter->setRenderHints(QPainter::Antialiasing | QPainter::SmoothPixmapTransform);
    const QRect row = option.rect;
    const QRect icon(row.x() + 10, row.center().y() - side / 2 + 1, side, side);
    const QRect button = buttonRect(row);
    const QRect size(button.left() - sizeWidth - 12, row.y(), sizeWidth, row.height());
    const int left = icon.right() + 13;
    const int room = size.left() - left - 12;
    drawIcon(*painter, icon, index);
    drawName(*painter, QRect(left, row.y() + 10, room, 20), index);

    const AppInfo &app = _rows.app(index);
    painter->setFont(_theme.font(12));
    painter->setPen(_theme.color(ThemeColor::secondary));
    const QString facts = u"版本 %1 · %2"_s.arg(app.version, shownPath(app.path));
    painter->drawText(QRect(left, row.y() + 31, room, 18), Qt::AlignLeft | Qt::AlignVCenter,
                      painter->fontMetrics().elidedText(facts, Qt::ElideMiddle, room));
    painter->drawText(size, Qt::AlignRight | Qt::AlignVCenter, sizeText(app));
    drawButton(*painter, option);
    painter->restore();
}

void AppRow::drawIcon(QPainter &painter, const QRect &rect, const QModelIndex &index) const
{
    const QIcon &icon = _rows.app(index).icon;
    if (!icon.isNull() && !icon.pixmap(rect.size()).isNull()) {
        icon.paint(&painter, rect);
        return;
    }
    QColor back = _theme.color(ThemeColor::secondary);
    back.setAlphaF(0.12F);
    painter.setPen(Qt::NoPen);
    painter.setBrush(back);
    painter.drawRoundedRect(rect, 8, 8);
    constexpr int inner = 20;
    painter.drawPixmap(rect.x() + (side - inner) / 2, rect.y() + (side - inner) / 2,
                       _theme.symbol(u"shippingbox.fill"_s, inner, _theme.color(ThemeColor::secondary),
                                     painter.device()->devicePixelRatioF()));
}

void AppRow::drawName(QPainter &painter, const QRect &rect, const QModelIndex &index) const
{
    const AppInfo &app = _rows.app(index);
    const QString manager = app.source.manager;
    const bool isRunning = _rows.isRunning(index);
    const QFontMetrics markMetrics(_theme.font(11));
    int marks = 0;
    for (const QString &mark : {manager, isRunning ? u"● 运行中"_s : QString()})
        marks += mark.isEmpty() ? 0 : markMetrics.horizontalAdvance(mark) + 22;

    painter.setFont(_theme.font(13, QFont::DemiBold));
    painter.setPen(_theme.color(ThemeColor::text));
    const QString name =
        painter.fontMetrics().elidedText(oneLine(app.name), Qt::ElideRight, rect.width() - marks);
    painter.drawText(rect, Qt::AlignLeft | Qt::AlignVCenter, name);
    QRect rest = rect.adjusted(painter.fontMetrics().horizontalAdvance(name) + 8, 0, 0, 0);
    if (!manager.isEmpty())
        drawMark(painter, rest, manager, _theme.color(ThemeColor::secondary));
    if (isRunning)
        drawMark(painter, rest, u"● 运行中"_s, _theme.color(ThemeColor::good));
}

void AppRow::drawMark(QPainter &painter, QRect &room, const QString &text, const QColor &color) const
{
    painter.setFont(_theme.font(11));
    const int width = painter.fontMetrics().horizontalAdvance(text) + 14;
    const QRect pill(room.x(), room.y() + 1, width, room.height() - 2);
    QColor back = color;
    back.setAlphaF(0.12F);
    painter.setPen(Qt::NoPen);
    painter.setBrush(back);
    painter.drawRoundedRect(pill, pill.height() / 2.0, pill.height() / 2.0);
    painter.setPen(color);
    painter.drawText(pill, Qt::AlignCenter, text);
    room.setLeft(pill.right() + 8);
}

void AppRow::drawButton(QPainter &painter, const QStyleOptionViewItem &option) const
{
    const bool isOver = option.state.testFlag(QStyle::State_MouseOver);
    const QRect rect = buttonRect(option.rect);
    painter.setPen(_theme.color(isOver ? ThemeColor::bad : ThemeColor::hairline));
    painter.setBrush(_theme.color(ThemeColor::control));
    painter.drawRoundedRect(QRectF(rect).adjusted(0.5, 0.5, -0.5, -0.5), 6, 6);
    painter.setFont(_theme.font(13));
    painter.setPen(_theme.color(ThemeColor::bad));
    painter.drawText(rect, Qt::AlignCenter, u"卸载"_s);
}

bool AppRow::editorEvent(QEvent *event, QAbstractItemModel *, const QStyleOptionViewItem &option,
                         const QModelIndex &index)
{
    if (event->type() != QEvent::MouseButtonRelease)
        return false;
    const auto *mouse = static_cast<QMouseEvent *>(event);
    if (mouse->button() != Qt::LeftButton || !buttonRect(option.rect).contains(mouse->position().toPoint()))
        return false;
    Q_EMIT uninstallWanted(index);
    return true;
}

} // namespace velbrix
