#include "views/cleanup/CleanupEntryList.h"

#include "foundation/Text.h"
#include "views/ShownText.h"
#include "views/Theme.h"
#include "views/components/CheckBox.h"

#include <QAbstractListModel>
#include <QFile>
#include <QHash>
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

QString sizeText(const CleanupEntry &entry)
{
    return entry.bytes ? formatByteCount(*entry.bytes) : u"计算中…"_s;
}

bool areSamePaths(const QList<CleanupEntry> &one, const QList<CleanupEntry> &other)
{
    return std::ranges::equal(one, other, {}, &CleanupEntry::path, &CleanupEntry::path);
}

} // namespace

class CleanupEntryList::Entries final : public QAbstractListModel {
public:
    enum Role { sizeRole = Qt::UserRole, pathRole, changeableRole };

    using QAbstractListModel::QAbstractListModel;

    void show(const QList<CleanupEntry> &entries);
    const QList<CleanupEntry> &entries() const { return _entries; }

    int rowCount(const QModelIndex &parent = {}) const override;
    QVariant data(const QModelIndex &index, int role) const override;
    Qt::ItemFlags flags(const QModelIndex &index) const override;

private:
    void reorder(const QList<CleanupEntry> &entries);

    QList<CleanupEntry> _entries;
};

void CleanupEntryList::Entries::show(const QList<CleanupEntry> &entries)
{
    if (entries.constData() == _entries.constData())
        return;
    if (entries.size() != _entries.size()) {
        beginResetModel();
        _entries = entries;
        endResetModel();
    } else if (areSamePaths(entries, _entries)) {
        _entries = entries;
        if (!entries.isEmpty())
            Q_EMIT dataChanged(index(0), index(static_cast<int>(entries.size()) - 1));
    } else {
        reorder(entries);
    }
}

void CleanupEntryList::Entries::reorder(const QList<CleanupEntry> &entries)
{
    Q_EMIT layoutAboutToBeChanged();
    const QModelIndexList held = persistentIndexList();
    QHash<QByteArray, int> rows;
    if (!held.isEmpty()) {
        rows.reserve(entries.size());
        for (int row = 0; row < entries.size(); ++row)
            rows.insert(entries[row].path, row);
    }
    QModelIndexList moved;
    for (const QModelIndex &old : held) {
        const auto place = rows.constFind(_entries[old.row()].path);
        moved.append(place == rows.cend() ? QModelIndex() : index(*place));
    }
    _entries = entries;
    changePersistentIndexList(held, moved);
    Q_EMIT layoutChanged();
}

int CleanupEntryList::Entries::rowCount(const QModelIndex &parent) const
{
    return parent.isValid() ? 0 : static_cast<int>(_entries.size());
}

QVariant CleanupEntryList::Entries::data(const QModelIndex &index, int role) const
{
    if (!index.isValid() || index.row() >= _entries.size())
        return {};
    const CleanupEntry &entry = _entries[index.row()];
    switch (role) {
    case Qt::DisplayRole:
        return entry.isIncluded && !entry.goes() ? u"%1（%2）"_s.arg(oneLine(entry.name), entry.whyStays)
                                                 : oneLine(entry.name);
    case Qt::ToolTipRole:
        return plainTip(oneLine(QFile::decodeName(entry.path)));
    case Qt::CheckStateRole:
        return entry.goes() ? Qt::Checked : Qt::Unchecked;
    case Qt::AccessibleTextRole:
        return u"%1，%2，%3"_s.arg(oneLine(entry.name), sizeText(entry),
                                   entry.goes()        ? u"将清理"_s
                                   : !entry.isIncluded ? u"已排除"_s
                                                       : u"保留："_s + entry.whyStays);
    case changeableRole:
        return !entry.isFixed && (entry.goes() || !entry.isIncluded);
    case sizeRole:
        return sizeText(entry);
    case pathRole:
        return entry.path;
    default:
        return {};
    }
}

Qt::ItemFlags CleanupEntryList::Entries::flags(const QModelIndex &index) const
{
    return QAbstractListModel::flags(index) | Qt::ItemIsUserCheckable | Qt::ItemNeverHasChildren;
}

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
        CheckBox::paint(*painter, _theme, box, isIncluded ? Qt::Checked : Qt::Unchecked,
                        _list.isEnabled() && index.data(Entries::changeableRole).toBool());
        const QString size = index.data(Entries::sizeRole).toString();
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
    : QListView(parent), _entries(new Entries(this))
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
    if (!index.data(Entries::changeableRole).toBool())
        return;
    const CleanupEntry &entry = _entries->entries()[index.row()];
    const QByteArray path = entry.path;
    Q_EMIT wanted(path, !entry.isIncluded);
}

} // namespace velbrix
