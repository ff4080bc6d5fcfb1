#include "views/cleanup/CleanupGroupCard.h"

#include "app/AppServices.h"
#include "views/Follow.h"
#include "views/Theme.h"
#include "views/cleanup/CleanupRow.h"
#include "views/components/Parts.h"

#include <QHBoxLayout>
#include <QPushButton>

#include <algorithm>

using namespace Qt::StringLiterals;

namespace velbrix {

CleanupGroupCard::CleanupGroupCard(const ViewContext &context, CleanupGroup group, QWidget *parent)
    : Card(parent), _context(context), _cleaner(context.services.cleaner)
{
    setObjectName(u"cleanupGroup.%1"_s.arg(static_cast<int>(group)));
    setAccessibleName(title(group));
    for (const CleanupItem &item : _cleaner.items()) {
        if (_cleaner.group(item.id) != group)
            continue;
        _rows.append(new CleanupRow(context, item));
        addRow(_rows.last());
    }
    addRow(makeFold(group));
    follow(_cleaner, &SystemCleaner::phaseChanged, this, [this] { fold(); });
}

QWidget *CleanupGroupCard::makeFold(CleanupGroup group)
{
    auto *row = new QWidget;
    auto *line = new QHBoxLayout(row);
    line->setContentsMargins(0, 6, 0, 6);
    _fold =
        makeButton(_context.theme, {u"cleanupFold.%1"_s.arg(static_cast<int>(group)), {}, {}, u"plain"_s});
    line->addWidget(_fold);
    line->addStretch(1);
    connect(_fold, &QPushButton::clicked, this, [this] {
        _isUnfolded = !_isUnfolded;
        fold();
    });
    return row;
}

// Never under the user's hands: what is worked with stays.
void CleanupGroupCard::fold()
{
    if (_cleaner.phase().kind == CleanupPhase::Kind::calculating)
        return;
    qsizetype empty = 0;
    for (CleanupRow *const row : std::as_const(_rows)) {
        const bool isInUse =
            _cleaner.details().contents().contains(row->id()) || row->isAncestorOf(window()->focusWidget());
        const bool isFoldable = _cleaner.isEmpty(row->id()) && !isInUse;
        empty += isFoldable ? 1 : 0;
        row->setVisible(_isUnfolded || !isFoldable);
    }
    _fold->parentWidget()->setVisible(empty > 0);
    const QString form = _isUnfolded            ? u"收起没有内容的 %1 项"_s
                         : empty < _rows.size() ? u"另有 %1 项没有可清理的内容"_s
                                                : u"%1 项都没有可清理的内容"_s;
    _fold->setText(form.arg(empty));
    _fold->setIcon(
        _context.theme.icon(_isUnfolded ? u"chevron.down"_s : u"chevron.right"_s, ThemeColor::secondary));
    _fold->setAccessibleName(_fold->text());
}

} // namespace velbrix
