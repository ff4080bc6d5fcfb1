#include "views/cleanup/CleanupRow.h"

#include "app/AppServices.h"
#include "foundation/Text.h"
#include "views/Follow.h"
#include "views/Theme.h"
#include "views/cleanup/CleanupEntryList.h"
#include "views/components/CheckBox.h"
#include "views/components/ElidedLabel.h"
#include "views/components/Parts.h"
#include "views/components/SymbolLabel.h"
#include "views/components/TabularLabel.h"

#include <QGridLayout>
#include <QHBoxLayout>
#include <QLabel>
#include <QPushButton>
#include <QVBoxLayout>

#include <algorithm>

using namespace Qt::StringLiterals;

namespace velbrix {
namespace {

constexpr int symbolSide = 22;
constexpr int openerSide = 28;
constexpr int sizeWidth = 64;

// Above the entries of an opened row.
QString contentsText(const CleanupContents &contents)
{
    if (!contents.problem.isEmpty())
        return contents.problem;
    if (contents.entries.isEmpty())
        return contents.isMeasuring      ? u"正在读取…"_s
               : contents.note.isEmpty() ? u"没有可清理的内容"_s
                                         : contents.note;
    const auto excluded = std::ranges::count(contents.entries, false, &CleanupEntry::isIncluded);
    const auto kept = std::ranges::count_if(
        contents.entries, [](const CleanupEntry &entry) { return entry.isIncluded && !entry.goes(); });
    QString text = u"共 %1 个条目"_s.arg(contents.entries.size());
    if (excluded > 0)
        text += u"，已排除 %1 个"_s.arg(excluded);
    if (kept > 0)
        text += u"，%1 个会保留"_s.arg(kept);
    if (!contents.note.isEmpty())
        text += u"；"_s + contents.note;
    return contents.isMeasuring ? text + u"，正在计算大小…"_s : text;
}

} // namespace

CleanupRow::CleanupRow(const ViewContext &context, const CleanupItem &item, QWidget *parent)
    : QWidget(parent), _context(context), _cleaner(context.services.cleaner), _id(item.id)
{
    setObjectName(u"cleanupRow."_s + _id);
    auto *rows = new QVBoxLayout(this);
    rows->setContentsMargins(0, 0, 0, 0);
    rows->setSpacing(0);
    rows->addWidget(makeLine(item));

    follow(_cleaner, &SystemCleaner::itemsChanged, this, [this] { showItem(); });
    follow(_cleaner.details(), &CleanupDetails::contentsChanged, this, [this] { showContents(); });
    const auto busy = [this] { showBusy(); };
    connect(&_cleaner, &SystemCleaner::forcedItemsChanged, this, busy);
    connect(&_cleaner, &SystemCleaner::busyItemsChanged, this, busy);
    follow(_cleaner, &SystemCleaner::phaseChanged, this, [this] {
        // What is being cleaned is decided.
        const bool isFree = !_cleaner.isCleaning();
        _check->setEnabled(isFree);
        _force->setEnabled(isFree);
        if (_remove)
            _remove->setEnabled(isFree);
        if (_entries)
            _entries->setEnabled(isFree);
        _open->setVisible(_cleaner.details().canOpen(_id)); // folders come and go
    });
    showBusy();
}

QWidget *CleanupRow::makeLine(const CleanupItem &item)
{
    auto *line = new QWidget;
    line->setMinimumHeight(44);
    auto *columns = new QHBoxLayout(line);
    columns->setContentsMargins(0, 9, 0, 9);
    columns->setSpacing(12);
    _check = new CheckBox(_context.theme, u"cleanupCheck."_s + _id);
    _check->setAccessibleName(oneLine(item.name));
    _check->setAccessibleDescription(oneLine(item.description));
    connect(_check, &CheckBox::wanted, this, [this](bool on) { _cleaner.setSelected(_id, on); });
    columns->addWidget(_check);
    columns->addWidget(new SymbolLabel(_context.theme, item.icon, symbolSide, ThemeColor::secondary));
    columns->addWidget(makeWords(item), 1);
    addButtons(line, item);
    return line;
}

QWidget *CleanupRow::makeWords(const CleanupItem &item)
{
    auto *words = new QWidget;
    auto *rows = new QVBoxLayout(words);
    rows->setContentsMargins(0, 0, 0, 0);
    rows->setSpacing(2);
    auto *title = new QHBoxLayout;
    title->setSpacing(8);
    title->addWidget(new ElidedLabel(item.name, u"body"_s, Qt::ElideMiddle));
    if (_cleaner.isAdministrative(_id)) {
        QLabel *const badge = makeText(u"需要管理员权限"_s, u"badge"_s);
        badge->setWordWrap(false);
        title->addWidget(badge);
    }
    title->addStretch(1);
    rows->addLayout(title);
    rows->addWidget(new ElidedLabel(item.description, u"note"_s, Qt::ElideMiddle));
    rows->addWidget(makeBusyMark(item));
    return words;
}

QWidget *CleanupRow::makeBusyMark(const CleanupItem &item)
{
    _busy = new QWidget;
    _busy->setObjectName(u"cleanupBusy."_s + _id);
    auto *line = new QHBoxLayout(_busy);
    line->setContentsMargins(0, 2, 0, 0);
    line->setSpacing(6);
    line->addWidget(
        new SymbolLabel(_context.theme, u"exclamationmark.triangle.fill"_s, 14, ThemeColor::warning));
    _busyText = makeText({}, u"warning"_s);
    _busyText->setWordWrap(false);
    line->addWidget(_busyText);
    line->addSpacing(8);
    _force = new CheckBox(_context.theme, u"cleanupForce."_s + _id, u"仍要清理"_s);
    _force->setFont(_context.theme.font(12));
    _force->setAccessibleName(u"仍要清理%1"_s.arg(oneLine(item.name)));
    line->addWidget(_force);
    line->addStretch(1);
    connect(_force, &CheckBox::wanted, this, [this](bool on) { _cleaner.setForced(_id, on); });
    return _busy;
}

void CleanupRow::addButtons(QWidget *line, const CleanupItem &item)
{
    auto *columns = static_cast<QHBoxLayout *>(line->layout());
    const QString name = oneLine(item.name);
    if (item.customPath) {
        _remove =
            makeButton(_context.theme, {u"cleanupRemove."_s + _id, u"移除自定义路径"_s, {}, u"plain"_s});
        _remove->setAccessibleDescription(name);
        columns->addWidget(_remove);
        connect(_remove, &QPushButton::clicked, this, [this] { _cleaner.removeCustomPath(_id); });
    }
    _size = new TabularLabel;
    _size->setObjectName(u"cleanupSize."_s + _id);
    auto *column = new QGridLayout;
    column->setColumnMinimumWidth(0, sizeWidth); // what stands before the sizes is in one column, too
    column->addWidget(_size, 0, 0, Qt::AlignRight | Qt::AlignVCenter);
    columns->addLayout(column);
    _open = makeButton(_context.theme, {u"cleanupOpen."_s + _id, {}, u"chevron.right"_s, u"icon"_s});
    _open->setFixedSize(openerSide, openerSide);
    QSizePolicy policy = _open->sizePolicy();
    policy.setRetainSizeWhenHidden(true); // sizes stand in one column
    _open->setSizePolicy(policy);
    columns->addWidget(_open);
    connect(_open, &QPushButton::clicked, this, [this] {
        if (_cleaner.details().contents().contains(_id))
            _cleaner.details().close(_id);
        else
            _cleaner.details().open(_id);
    });
}

QWidget *CleanupRow::makeContents(const CleanupItem &item)
{
    auto *contents = new QWidget;
    contents->setObjectName(u"cleanupContents."_s + _id);
    auto *rows = new QVBoxLayout(contents);
    rows->setContentsMargins(_check->sizeHint().width() + symbolSide + 24, 0, 0, 12);
    rows->setSpacing(6);
    _contentsText = makeText({}, u"note"_s);
    _contentsText->setObjectName(u"cleanupContentsText."_s + _id);
    rows->addWidget(_contentsText);
    _entries = new CleanupEntryList(_context.theme, u"cleanupEntries."_s + _id);
    _entries->setAccessibleName(u"%1的内容"_s.arg(oneLine(item.name)));
    rows->addWidget(_entries);
    connect(_entries, &CleanupEntryList::wanted, this,
            [this](const QByteArray &path, bool on) { _cleaner.details().setIncluded(_id, path, on); });
    return contents;
}

void CleanupRow::showItem()
{
    const QList<CleanupItem> items = _cleaner.items();
    const auto item = std::ranges::find(items, _id, &CleanupItem::id);
    if (item == items.end())
        return; // taken away; the card soon notices
    _check->setOn(item->isSelected);
    _size->setText(item->estimatedSize);
    setLook(_size, "role", _cleaner.measuredBytes(_id) ? u"body"_s : u"value"_s);
}

void CleanupRow::showBusy()
{
    const bool isForced = _cleaner.forcedItems().contains(_id);
    _busy->setVisible(_cleaner.busyItems().contains(_id));
    _busyText->setText(isForced ? u"正在运行"_s : u"正在运行，将跳过"_s);
    _force->setOn(isForced);
}

void CleanupRow::showContents()
{
    const CleanupContentsById all = _cleaner.details().contents();
    const auto found = all.constFind(_id);
    const bool isOpened = found != all.cend();
    showOpened(isOpened);
    if (!isOpened)
        return;
    _contentsText->setText(contentsText(*found));
    setLook(_contentsText, "role", found->problem.isEmpty() ? u"note"_s : u"warning"_s);
    _entries->setVisible(!found->entries.isEmpty());
    _entries->showEntries(found->entries);
}

void CleanupRow::showOpened(bool isOpened)
{
    if (isOpened && !_contents) {
        const QList<CleanupItem> items = _cleaner.items();
        _contents = makeContents(*std::ranges::find(items, _id, &CleanupItem::id));
        layout()->addWidget(_contents);
    }
    if (_contents)
        _contents->setVisible(isOpened);
    const QString act = isOpened ? u"收起%1的内容"_s : u"显示%1的内容"_s;
    _open->setAccessibleName(act.arg(_check->accessibleName()));
    _open->setIcon(
        _context.theme.icon(isOpened ? u"chevron.down"_s : u"chevron.right"_s, ThemeColor::secondary));
}

} // namespace velbrix
