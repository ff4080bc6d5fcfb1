#include "views/recorder/RecordLogCard.h"

#include "app/AppServices.h"
#include "views/Follow.h"
#include "views/components/Parts.h"

#include <QClipboard>
#include <QGuiApplication>
#include <QHBoxLayout>
#include <QKeyEvent>
#include <QLabel>
#include <QListView>
#include <QPushButton>
#include <QScrollBar>
#include <QStringListModel>
#include <QVBoxLayout>

#include <algorithm>

using namespace Qt::StringLiterals;

namespace velbrix {

RecordLogCard::RecordLogCard(const ViewContext &context, QWidget *parent)
    : Card(parent), _context(context), _lines(new QStringListModel(this)), _list(new QListView)
{
    _list->setObjectName(u"recordLog"_s);
    _list->setAccessibleName(u"录制日志"_s);
    _list->setProperty("role", u"log"_s);
    _list->setModel(_lines);
    _list->setEditTriggers(QListView::NoEditTriggers);
    _list->setSelectionMode(QListView::ExtendedSelection);
    _list->setWordWrap(true);
    _list->setUniformItemSizes(false);
    _list->setFixedHeight(180);
    _list->installEventFilter(this);

    auto *row = new QWidget;
    auto *rows = new QVBoxLayout(row);
    rows->setContentsMargins(0, 8, 0, 12);
    rows->setSpacing(8);
    auto *top = new QHBoxLayout;
    top->addWidget(makeText(u"录制日志"_s, u"body"_s), 1);
    QPushButton *const copyButton = makeButton(context.theme, {u"copyLog"_s, u"复制"_s, {}, u"plain"_s});
    QPushButton *const clear = makeButton(context.theme, {u"clearLog"_s, u"清空"_s, {}, u"plain"_s});
    top->addWidget(copyButton);
    top->addWidget(clear);
    rows->addLayout(top);
    rows->addWidget(_list);
    addRow(row);

    RecorderLog &log = context.services.recorder.log();
    connect(copyButton, &QPushButton::clicked, this, [this] { copy(); });
    connect(clear, &QPushButton::clicked, this, [&log] { log.clear(); });
    follow(log, &RecorderLog::logLinesChanged, this, [this] { refresh(); });
}

bool RecordLogCard::eventFilter(QObject *, QEvent *event)
{
    if (event->type() != QEvent::KeyPress || !static_cast<QKeyEvent *>(event)->matches(QKeySequence::Copy))
        return false;
    copy();
    return true;
}

void RecordLogCard::refresh()
{
    QScrollBar *const bar = _list->verticalScrollBar();
    const bool isAtEnd = bar->value() >= bar->maximum() - 4;
    const QStringList wanted = _context.services.recorder.log().logLines();
    const QStringList shown = _lines->stringList();
    // A new line is added rather than the list replaced: a selection stays.
    if (wanted.size() > shown.size() && std::ranges::equal(shown, wanted.first(shown.size()))) {
        for (qsizetype index = shown.size(); index < wanted.size(); ++index) {
            const int row = _lines->rowCount();
            _lines->insertRow(row);
            _lines->setData(_lines->index(row), wanted[index]);
        }
    } else {
        _lines->setStringList(wanted);
    }
    if (isAtEnd)
        _list->scrollToBottom();
}

void RecordLogCard::copy()
{
    QModelIndexList rows = _list->selectionModel()->selectedRows();
    std::ranges::sort(rows, {}, &QModelIndex::row);
    QStringList chosen;
    for (const QModelIndex &row : std::as_const(rows))
        chosen.append(row.data().toString());
    if (chosen.isEmpty())
        chosen = _lines->stringList();
    QGuiApplication::clipboard()->setText(chosen.join(u'\n'));
}

} // namespace velbrix
