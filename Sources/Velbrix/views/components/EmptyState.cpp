#include "views/components/EmptyState.h"

#include "views/components/Parts.h"
#include "views/components/SymbolLabel.h"

#include <QLabel>
#include <QPushButton>
#include <QVBoxLayout>

using namespace Qt::StringLiterals;

namespace velbrix {

EmptyState::EmptyState(const Theme &theme, const QString &name, const Words &words, QWidget *parent)
    : QWidget(parent)
{
    setObjectName(name);
    auto *rows = new QVBoxLayout(this);
    rows->setContentsMargins(16, 20, 16, 20);
    rows->setSpacing(4);
    rows->addWidget(new SymbolLabel(theme, words.symbol, 32, ThemeColor::secondary), 0, Qt::AlignHCenter);
    rows->addSpacing(4);
    QLabel *const title = makeText(words.title, u"heading"_s);
    QLabel *const advice = makeText(words.advice, u"note"_s);
    for (QLabel *label : {title, advice}) {
        label->setAlignment(Qt::AlignHCenter);
        rows->addWidget(label);
    }
    if (words.action.isEmpty())
        return;
    QPushButton *const button = makeButton(theme, {name + u"Action"_s, words.action, {}, {}});
    rows->addSpacing(8);
    rows->addWidget(button, 0, Qt::AlignHCenter);
    connect(button, &QPushButton::clicked, this, &EmptyState::acted);
}

} // namespace velbrix
