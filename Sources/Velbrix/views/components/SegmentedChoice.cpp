#include "views/components/SegmentedChoice.h"

#include <QButtonGroup>
#include <QEvent>
#include <QFontMetrics>
#include <QHBoxLayout>
#include <QPushButton>

using namespace Qt::StringLiterals;

namespace velbrix {

SegmentedChoice::SegmentedChoice(const QString &name, const QStringList &texts, QWidget *parent)
    : QFrame(parent), _group(new QButtonGroup(this))
{
    setObjectName(name);
    setProperty("role", u"segments"_s);
    auto *line = new QHBoxLayout(this);
    line->setContentsMargins(1, 1, 1, 1);
    line->setSpacing(2);
    for (int index = 0; index < texts.size(); ++index) {
        auto *button = new QPushButton(texts[index], this);
        button->setObjectName(u"%1.%2"_s.arg(name).arg(index));
        button->setProperty("role", u"segment"_s);
        button->setCheckable(true);
        button->setFocusPolicy(Qt::TabFocus);
        // Room for the bolder chosen text, so that nothing moves.
        QFont bold = button->font();
        bold.setWeight(QFont::DemiBold);
        button->setMinimumWidth(QFontMetrics(bold).horizontalAdvance(texts[index]) + 28);
        _group->addButton(button, index);
        line->addWidget(button);
    }
    setSizePolicy(QSizePolicy::Maximum, QSizePolicy::Fixed);
    connect(_group, &QButtonGroup::idToggled, this, [this](int index, bool on) {
        if (on)
            Q_EMIT wanted(index);
    });
}

void SegmentedChoice::setCurrent(int index)
{
    if (QAbstractButton *button = _group->button(index); button && !button->isChecked())
        button->setChecked(true);
}

int SegmentedChoice::current() const
{
    return _group->checkedId();
}

void SegmentedChoice::changeEvent(QEvent *event)
{
    if (event->type() == QEvent::EnabledChange) {
        const auto buttons = _group->buttons();
        for (QAbstractButton *button : buttons)
            button->setEnabled(isEnabled());
    }
    QFrame::changeEvent(event);
}

} // namespace velbrix
