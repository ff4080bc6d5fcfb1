#include "views/cleanup/CleanupControlCard.h"

#include "app/AppServices.h"
#include "foundation/Text.h"
#include "views/Follow.h"
#include "views/ShownText.h"
#include "views/Theme.h"
#include "views/components/Confirmation.h"
#include "views/components/JobBar.h"
#include "views/components/Parts.h"
#include "views/components/TabularLabel.h"

#include <QHBoxLayout>
#include <QLabel>
#include <QPushButton>
#include <QVBoxLayout>

#include <algorithm>

using namespace Qt::StringLiterals;

namespace velbrix {
namespace {

constexpr int steps = 1000; // of the progress

QStringList idsToClean(const SystemCleaner &cleaner)
{
    QStringList ids;
    for (const CleanupItem &item : cleaner.itemsToClean())
        ids.append(item.id);
    return ids;
}

// "已选 12 项，其中 1 项正在使用，将跳过"
QString selectionText(const SystemCleaner &cleaner)
{
    const auto selected = std::ranges::count_if(cleaner.items(), &CleanupItem::isSelected);
    if (selected == 0)
        return u"没有选择任何清理项"_s;
    const qsizetype skipped = cleaner.itemsToSkip().size();
    const QString text = u"已选 %1 项"_s.arg(selected);
    return skipped > 0 ? text + u"，其中 %1 项正在使用，将跳过"_s.arg(skipped) : text;
}

// "用户缓存 — 1.2 GB（需要管理员权限，排除 2 个条目）". Folders of the user's
// are told with their path: many are called "build".
QString itemLine(const SystemCleaner &cleaner, const CleanupItem &item)
{
    QString line = oneLine(item.customPath ? shownPath(*item.customPath) : item.name);
    if (const qint64 bytes = cleaner.bytesToGo(item.id); bytes > 0)
        line += u" — "_s + formatByteCount(bytes);
    QStringList marks;
    if (cleaner.isAdministrative(item.id))
        marks.append(u"需要管理员权限"_s);
    if (cleaner.forcedItems().contains(item.id) && cleaner.busyItems().contains(item.id))
        marks.append(u"正在运行，仍要清理"_s);
    if (const auto count = cleaner.excludedCount(item.id); count > 0)
        marks.append(u"排除 %1 个条目"_s.arg(count));
    return marks.isEmpty() ? line : line + u"（%1）"_s.arg(marks.join(u"，"_s));
}

// What is asked before the selected items are cleaned.
NoticeSheet::Words cleanupQuestion(const SystemCleaner &cleaner)
{
    const QList<CleanupItem> items = cleaner.itemsToClean();
    const qint64 bytes = cleaner.selectedBytes();
    NoticeSheet::Words words;
    words.symbol = u"trash"_s;
    words.title = u"确认清理"_s;
    words.message = u"将清理已选中的 %1 个项目%2，操作不可撤销。"_s.arg(items.size())
                        .arg(bytes > 0 ? u"（约 %1）"_s.arg(formatByteCount(bytes)) : QString());
    QStringList empty;
    for (const CleanupItem &item : items) {
        if (cleaner.isEmpty(item.id))
            empty.append(item.name);
        else
            words.details.append(itemLine(cleaner, item));
    }
    if (!empty.isEmpty())
        words.details.append(u"没有可清理的内容：%1"_s.arg(oneLine(empty.join(u"、"_s))));
    for (const QString &name : cleaner.foldersToSkip())
        words.details.append(u"其中跳过正在运行的：%1"_s.arg(oneLine(name)));
    const QStringList skipped = cleaner.itemsToSkip();
    if (!skipped.isEmpty())
        words.message += u"另有 %1 个项目正在运行，将跳过。"_s.arg(skipped.size());
    for (const QString &name : skipped)
        words.details.append(u"跳过：%1（正在运行）"_s.arg(oneLine(name)));
    words.confirm = u"清理"_s;
    words.isDestructive = true;
    return words;
}

} // namespace

CleanupControlCard::CleanupControlCard(const ViewContext &context, QWidget *parent)
    : Card(parent), _context(context), _cleaner(context.services.cleaner)
{
    setObjectName(u"cleanupControl"_s);
    addRow(makeTotals());
    _job = new JobBar(context.theme, u"cleanupJob"_s);
    addDetail(_job);
    addRow(makeTools());

    connect(_job, &JobBar::cancelled, this, [this] { _cleaner.cancel(); });
    const auto totals = [this] { showTotals(); };
    const auto job = [this] { showJob(); };
    connect(&_cleaner, &SystemCleaner::itemsChanged, this, totals);
    connect(&_cleaner, &SystemCleaner::busyItemsChanged, this, totals);
    connect(&_cleaner, &SystemCleaner::forcedItemsChanged, this, totals);
    connect(&_cleaner.details(), &CleanupDetails::contentsChanged, this, totals);
    connect(&_cleaner, &SystemCleaner::progressChanged, this, job);
    connect(&_cleaner, &SystemCleaner::phaseChanged, this, job);
    showTotals();
    showJob();
}

QWidget *CleanupControlCard::makeTotals()
{
    const Theme &theme = _context.theme;
    auto *row = new QWidget;
    auto *line = new QHBoxLayout(row);
    line->setContentsMargins(0, 14, 0, 14);
    line->setSpacing(16);
    auto *words = new QVBoxLayout;
    words->setSpacing(2);
    _total = new TabularLabel;
    _total->setObjectName(u"cleanupTotal"_s);
    _total->setFont(theme.font(24, QFont::DemiBold));
    words->addWidget(_total);
    words->addWidget(makeText(u"所选项目占用的空间"_s, u"note"_s));
    line->addLayout(words, 1);
    _clean = makeButton(theme, {u"cleanupClean"_s, u"清理"_s, u"sparkles"_s, u"primary"_s});
    _clean->setAccessibleName(u"清理所选项目"_s);
    _clean->setProperty("large", true);
    line->addWidget(_clean, 0, Qt::AlignVCenter);
    connect(_clean, &QPushButton::clicked, this, [this] { cleanWithConsent(); });
    return row;
}

QWidget *CleanupControlCard::makeTools()
{
    const Theme &theme = _context.theme;
    auto *row = new QWidget;
    auto *line = new QHBoxLayout(row);
    line->setContentsMargins(0, 6, 0, 6);
    line->setSpacing(4);
    _selection = makeText({}, u"body"_s);
    _selection->setObjectName(u"cleanupSelection"_s);
    _all = makeButton(theme, {u"cleanupAll"_s, u"全选"_s, {}, u"plain"_s});
    _none = makeButton(theme, {u"cleanupNone"_s, u"全不选"_s, {}, u"plain"_s});
    _recalculate =
        makeButton(theme, {u"cleanupRecalculate"_s, u"重新计算大小"_s, u"arrow.clockwise"_s, u"plain"_s});
    line->addWidget(_selection, 1);
    line->addWidget(_all);
    line->addWidget(_none);
    line->addWidget(_recalculate);
    connect(_all, &QPushButton::clicked, this, [this] { _cleaner.setAllSelected(true); });
    connect(_none, &QPushButton::clicked, this, [this] { _cleaner.setAllSelected(false); });
    connect(_recalculate, &QPushButton::clicked, this, [this] { _cleaner.recalculate(); });
    return row;
}

void CleanupControlCard::showTotals()
{
    const qint64 bytes = _cleaner.selectedBytes();
    const bool isUnknown = bytes == 0 && _cleaner.phase().kind == CleanupPhase::Kind::calculating;
    _total->setText(isUnknown ? u"计算中…"_s : formatByteCount(bytes));
    _selection->setText(selectionText(_cleaner));
}

void CleanupControlCard::showJob()
{
    const CleanupPhase phase = _cleaner.phase();
    const bool isCleaning = _cleaner.isCleaning();
    if (isCleaning) {
        const int done = static_cast<int>(_cleaner.progress() * steps);
        // Of a single item nobody knows how far it is.
        _job->setJob(u"正在清理 %1…"_s.arg(phase.text), done, done > 0 ? steps : 0);
    } else {
        _job->setJob(u"正在计算各目录大小…"_s, 0, 0);
    }
    // While sizes are measured, the items can be chosen and cleaned.
    const QList<QWidget *> choosing = {_clean, _all, _none};
    if (isCleaning) {
        _job->setRunning(true, choosing + QList<QWidget *>{_recalculate});
    } else {
        for (QWidget *button : choosing)
            button->setEnabled(true);
        _job->setRunning(_cleaner.isWorking(), {_recalculate});
    }
    showTotals();
}

void CleanupControlCard::cleanWithConsent()
{
    if (_cleaner.itemsToClean().isEmpty())
        _cleaner.clean(); // says that there is nothing to do
    else
        _context.services.privacy.guard(featurePrivacyNotice(PrivacyConsentKind::systemCleanup),
                                        [this] { ask(); });
}

void CleanupControlCard::ask()
{
    const QStringList asked = idsToClean(_cleaner);
    Confirmation::ask(_context.theme, this, cleanupQuestion(_cleaner), [this, asked] {
        // Somebody may have chosen otherwise meanwhile, from the command line.
        if (idsToClean(_cleaner) == asked)
            _cleaner.clean(asked);
        else
            ask();
    });
}

} // namespace velbrix
