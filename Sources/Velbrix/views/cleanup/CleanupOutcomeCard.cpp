#include "views/cleanup/CleanupOutcomeCard.h"

#include "app/AppServices.h"
#include "foundation/Text.h"
#include "views/Follow.h"
#include "views/ShownText.h"
#include "views/components/Parts.h"
#include "views/components/SymbolLabel.h"

#include <QEvent>
#include <QFile>
#include <QHBoxLayout>
#include <QLabel>
#include <QListView>
#include <QPushButton>
#include <QScrollBar>
#include <QStringListModel>
#include <QVBoxLayout>

#include <algorithm>

using namespace Qt::StringLiterals;

namespace velbrix {
namespace {

constexpr int mostListHeight = 168;
constexpr int padding = 16; // of the list

// "有 3 个条目没有删除"; empty when all went.
QString problemText(const RemovalReport &removal)
{
    if (removal.problemCount == 0)
        return {};
    const QString text = u"有 %1 个条目没有删除"_s.arg(removal.problemCount);
    return removal.problemCount > removal.problems.size()
               ? text + u"，列出前 %1 个"_s.arg(removal.problems.size())
               : text;
}

} // namespace

CleanupOutcomeCard::CleanupOutcomeCard(const ViewContext &context, QWidget *parent)
    : Card(parent), _context(context), _cleaner(context.services.cleaner), _lines(new QStringListModel(this))
{
    setObjectName(u"cleanupOutcome"_s);
    addRow(makeResult());
    addRow(makeProblems());
    const auto again = [this] { refresh(); };
    connect(&_cleaner, &SystemCleaner::phaseChanged, this, again);
    connect(&_cleaner, &SystemCleaner::itemsChanged, this, again);
    connect(&_cleaner, &SystemCleaner::forcedItemsChanged, this, again);
    follow(_cleaner, &SystemCleaner::reportChanged, this, [this] { refresh(); });
}

QWidget *CleanupOutcomeCard::makeResult()
{
    auto *row = new QWidget;
    auto *line = new QHBoxLayout(row);
    line->setContentsMargins(0, 12, 0, 12);
    line->setSpacing(12);
    _mark = new SymbolLabel(_context.theme, u"checkmark.circle.fill"_s, 22, ThemeColor::good);
    line->addWidget(_mark, 0, Qt::AlignTop);
    auto *words = new QVBoxLayout;
    words->setSpacing(2);
    _result = makeText({}, u"goodHeading"_s);
    _result->setObjectName(u"cleanupResult"_s);
    _details = makeText({}, u"note"_s);
    _details->setObjectName(u"cleanupDetails"_s);
    words->addWidget(_result);
    words->addWidget(_details);
    line->addLayout(words, 1);
    return row;
}

QWidget *CleanupOutcomeCard::makeProblems()
{
    _problems = new QWidget;
    auto *rows = new QVBoxLayout(_problems);
    rows->setContentsMargins(0, 8, 0, 8);
    rows->setSpacing(8);
    auto *line = new QHBoxLayout;
    line->setSpacing(12);
    line->addWidget(
        new SymbolLabel(_context.theme, u"exclamationmark.triangle.fill"_s, 22, ThemeColor::warning));
    _problemCount = makeText({}, u"body"_s);
    _problemCount->setObjectName(u"cleanupProblemCount"_s);
    line->addWidget(_problemCount, 1);
    _open = makeButton(_context.theme, {u"cleanupProblemsOpen"_s, u"查看原因"_s, {}, u"plain"_s});
    line->addWidget(_open);
    rows->addLayout(line);
    _list = new QListView;
    _list->setObjectName(u"cleanupProblems"_s);
    _list->setAccessibleName(u"没有删除的条目"_s);
    _list->setProperty("role", u"log"_s);
    _list->setModel(_lines);
    _list->setEditTriggers(QListView::NoEditTriggers);
    _list->setWordWrap(true);
    _list->setTextElideMode(Qt::ElideMiddle);
    _list->setHorizontalScrollBarPolicy(Qt::ScrollBarAlwaysOff);
    _list->setVerticalScrollMode(QListView::ScrollPerPixel);
    _list->installEventFilter(this);
    rows->addWidget(_list);
    connect(_open, &QPushButton::clicked, this, [this] { showProblems(_list->isHidden()); });
    return _problems;
}

void CleanupOutcomeCard::refresh()
{
    const CleanupReport report = _cleaner.report();
    const QString result = resultText(report);
    const bool hasFailed = report.outcome.kind == CleanupPhase::Kind::failed;
    // That there was nothing to do is told until there is something to do.
    const bool isOutdated = hasFailed && !_cleaner.itemsToClean().isEmpty();
    setVisible(!result.isEmpty() && !isOutdated && !_cleaner.isCleaning());
    if (hasFailed)
        _mark->show(u"xmark.circle.fill"_s, ThemeColor::bad);
    else if (report.wasCancelled)
        _mark->show(u"info.circle"_s, ThemeColor::secondary);
    else if (!report.failed.isEmpty())
        _mark->show(u"exclamationmark.triangle.fill"_s, ThemeColor::warning);
    else
        _mark->show(u"checkmark.circle.fill"_s, ThemeColor::good);
    _result->setText(result);
    setLook(_result, "role",
            hasFailed                                         ? u"badHeading"_s
            : report.wasCancelled || !report.failed.isEmpty() ? u"heading"_s
                                                              : u"goodHeading"_s);
    const QString details = reportLines(report).join(u'\n');
    _details->setText(details);
    _details->setVisible(!details.isEmpty());

    QStringList lines;
    for (const RemovalProblem &problem : report.removal.problems)
        lines.append(oneLine(shownPath(QFile::decodeName(problem.path))) + u" — "_s + problem.reason);
    _problemCount->setText(problemText(report.removal));
    _problems->setVisible(!lines.isEmpty());
    if (lines == _lines->stringList())
        return;
    _lines->setStringList(lines);
    showProblems(false);
}

void CleanupOutcomeCard::showProblems(bool isOpened)
{
    _list->setVisible(isOpened);
    fitProblems();
    _open->setText(isOpened ? u"收起"_s : u"查看原因"_s);
    _open->setAccessibleName(_open->text());
}

// Lines that break in this width may ask for another height.
void CleanupOutcomeCard::fitProblems()
{
    _list->doItemsLayout();
    const QRect last = _list->visualRect(_lines->index(_lines->rowCount() - 1));
    const int wanted = last.bottom() + _list->verticalScrollBar()->value() + padding;
    _list->setFixedHeight(std::min(mostListHeight, wanted));
}

bool CleanupOutcomeCard::eventFilter(QObject *watched, QEvent *event)
{
    if (watched == _list && event->type() == QEvent::Resize)
        fitProblems();
    return Card::eventFilter(watched, event);
}

} // namespace velbrix
