#include "views/components/Card.h"

#include "views/components/Parts.h"

#include <QEvent>
#include <QVBoxLayout>

namespace velbrix {

// A row with its line, which both disappear when the row is hidden.
class Card::Slot final : public QObject {
public:
    Slot(Card *card, QWidget *row, QFrame *lineAbove)
        : QObject(card), content(row), line(lineAbove), _card(card)
    {
        content->installEventFilter(this);
    }

    QWidget *content;
    QFrame *line; // null for a detail

private:
    bool eventFilter(QObject *, QEvent *event) override
    {
        if (event->type() == QEvent::ShowToParent || event->type() == QEvent::HideToParent)
            _card->arrangeLines();
        return false;
    }

    Card *_card;
};

Card::Card(QWidget *parent) : QFrame(parent), _rows(new QVBoxLayout(this))
{
    setProperty("role", QStringLiteral("card"));
    _rows->setContentsMargins(16, 4, 16, 4);
    _rows->setSpacing(0);
}

void Card::addRow(QWidget *row)
{
    add(row, true);
}

void Card::addDetail(QWidget *detail)
{
    add(detail, false);
}

void Card::add(QWidget *content, bool line)
{
    QFrame *const above = line ? makeHairline(this) : nullptr;
    if (above)
        _rows->addWidget(above);
    _rows->addWidget(content);
    _slots.append(new Slot(this, content, above));
    arrangeLines();
}

void Card::arrangeLines()
{
    bool isFirst = true;
    for (const Slot *slot : std::as_const(_slots)) {
        const bool isShown = !slot->content->isHidden();
        if (slot->line)
            slot->line->setVisible(isShown && !isFirst);
        isFirst = isFirst && !isShown;
    }
}

} // namespace velbrix
