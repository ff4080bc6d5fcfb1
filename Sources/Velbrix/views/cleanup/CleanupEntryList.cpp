#include "views/cleanup/CleanupEntryList.h"

#include "views/Theme.h"
#include "views/cleanup/CleanupEntries.h"
#include "views/components/CheckBox.h"

#include <QKeyEvent>
#include <QPainter>
#include <QStyledItemDelegate>

#include <algorithm>

using namespace Qt::StringLiterals;

namespace velbrix {
namespace {

constexpr int lineHeight = 30;
constexpr int mostLines = 8; // the rest scrolls
constexpr int gap = 10;

} // namespace

class CleanupEntryList::Line final : public QStyledItemDelegate {
public:
    Line(const Theme &theme, const CleanupEntryList &list)
        : QStyledItemDelegate(const_cast<CleanupEntryList *>(&list)), _theme(theme), _list(list)
    {
    }

    QSize sizeHint(const QStyleOptionViewItem &, const QModelIndex &) const override
    {
        return {0, lineHeight};
    }

    void paint(QPainter *painter, const QStyleOptionViewItem &option, const QModelIndex &index) const override
    {
        painter->save();
        painter->setRenderHint(QPainter::Antialiasing);
        drawBackground(*painter, option);
        const QRect room = option.rect.adjusted(gap, 0, -gap, 0);
        const bool isIncluded = index.data(Qt::CheckStateRole).toInt() == Qt::Checked;
        const QRectF box(room.x(), room.y() + (lineHeight - CheckBox::side) / 2.0, CheckBox::side,
                         CheckBox::side);
        CheckBox::paint(*painter, _theme, box, isIncluded ? Qt::Checked : Qt::Unchecked, _list.isEnabled());
        const QString size = index.data(CleanupEntries::sizeRole).toString();
        const QFontMetrics metrics = option.fontMetrics;
        const int sizeWidth = metrics.horizontalAdvance(size);
        painter->setPen(_theme.color(ThemeColor::secondary));
        painter->drawText(room, Qt::AlignRight | Qt::AlignVCenter | Qt::TextSingleLine, size);
        const QRect words = room.adjusted(CheckBox::side + gap, 0, -sizeWidth - 2 * gap, 0);
        painter->setPen(_theme.color(isIncluded ? ThemeColor::text : ThemeColor::secondary));
        painter->drawText(words, Qt::AlignLeft | Qt::AlignVCenter | Qt::TextSingleLine,
                          metrics.elidedText(index.data().toString(), Qt::ElideMiddle, words.width()));
        painter->restore();
    }

private:
    void drawBackground(QPainter &painter, const QStyleOptionViewItem &option) const
    {
        const bool isCurrent = option.state.testFlag(QStyle::State_HasFocus);
        const bool isUnder = option.state.testFlag(QStyle::State_MouseOver);
        if (!isCurrent && !isUnder)
            return;
        QColor tint = _theme.color(isCurrent ? ThemeColor::accent : ThemeColor::secondary);
        tint.setAlphaF(isCurrent ? 0.16F : 0.08F);
        painter.setPen(Qt::NoPen);
        painter.setBrush(tint);
        painter.drawRoundedRect(option.rect.adjusted(1, 1, -1, -1), 6, 6);
    }

    const Theme &_theme;
    const CleanupEntryList &_list;
};

CleanupEntryList::CleanupEntryList(const Theme &theme, const QString &name, QWidget *parent)
    : QListView(parent), _entries(new CleanupEntries(this))
{
    setObjectName(name);
    setProperty("role", u"entries"_s);
    setModel(_entries);
    setItemDelegate(new Line(theme, *this));
    setUniformItemSizes(true);
    setSelectionMode(NoSelection);
    setEditTriggers(NoEditTriggers);
    setVerticalScrollMode(ScrollPerPixel);
    setHorizontalScrollBarPolicy(Qt::ScrollBarAlwaysOff);
    setMouseTracking(true);
    setTabKeyNavigation(false);
    connect(this, &QListView::clicked, this, [this](const QModelIndex &index) { toggle(index); });
    connect(&theme, &Theme::changed, viewport(), qOverload<>(&QWidget::update));
}

void CleanupEntryList::showEntries(const QList<CleanupEntry> &entries)
{
    _entries->show(entries);
    const int lines = std::clamp(static_cast<int>(entries.size()), 1, mostLines);
    setFixedHeight(lines * lineHeight + 2 * frameWidth() + 8);
}

void CleanupEntryList::keyPressEvent(QKeyEvent *event)
{
    const bool toggles =
        event->key() == Qt::Key_Space || event->key() == Qt::Key_Return || event->key() == Qt::Key_Enter;
    if (toggles && currentIndex().isValid())
        toggle(currentIndex());
    else
        QListView::keyPressEvent(event);
}

void CleanupEntryList::focusInEvent(QFocusEvent *event)
{
    QListView::focusInEvent(event);
    if (!currentIndex().isValid() && _entries->rowCount() > 0)
        setCurrentIndex(_entries->index(0));
}

void CleanupEntryList::toggle(const QModelIndex &index)
{
    const CleanupEntry &entry = _entries->entries()[index.row()];
    const QByteArray path = entry.path;
    Q_EMIT wanted(path, !entry.isIncluded);
}

} // namespace velbrix
