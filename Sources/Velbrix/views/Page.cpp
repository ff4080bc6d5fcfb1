#include "views/Page.h"

#include "views/components/Parts.h"

#include <QHBoxLayout>
#include <QLabel>
#include <QVBoxLayout>

using namespace Qt::StringLiterals;

namespace velbrix {
namespace {

constexpr int columnWidth = 760;
constexpr int margin = 28;

} // namespace

Page::Page(const QString &name, const QString &title, const QString &purpose, QWidget *parent)
    : QScrollArea(parent), _column(nullptr)
{
    setObjectName(name);
    setAccessibleName(title);
    setWidgetResizable(true);
    setFrameShape(NoFrame);
    setHorizontalScrollBarPolicy(Qt::ScrollBarAlwaysOff);
    setFocusPolicy(Qt::NoFocus);

    auto *body = new QWidget;
    body->setObjectName(u"pageBody"_s);
    auto *column = new QWidget;
    column->setObjectName(u"pageColumn"_s);
    column->setMaximumWidth(columnWidth);
    _column = new QVBoxLayout(column);
    _column->setContentsMargins(0, 0, 0, 0);
    _column->setSpacing(12);
    auto *words = new QVBoxLayout;
    words->setSpacing(4);
    words->addWidget(makeText(title, u"title"_s));
    words->addWidget(makeText(purpose, u"secondary"_s));
    words->setContentsMargins(0, 0, 0, 8);
    _column->addLayout(words);
    _column->addStretch(1);

    auto *line = new QHBoxLayout(body);
    line->setContentsMargins(margin, 24, margin, margin);
    line->addStretch(1);
    line->addWidget(column, 1000); // takes the room up to its maximum, the rest is shared
    line->addStretch(1);
    setWidget(body);
}

void Page::add(QWidget *card)
{
    _column->insertWidget(_column->count() - 1, card);
}

void Page::add(const QString &heading, QWidget *card)
{
    QLabel *const words = makeText(heading, u"heading"_s);
    words->setContentsMargins(0, 12, 0, 0);
    add(words);
    add(card);
}

} // namespace velbrix
