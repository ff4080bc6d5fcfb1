#include "views/components/Parts.h"

#include "views/Theme.h"

#include <QAbstractSpinBox>
#include <QEvent>
#include <QFrame>
#include <QLabel>
#include <QPushButton>
#include <QStyle>
#include <QVariant>

using namespace Qt::StringLiterals;

namespace velbrix {
namespace {

class NoWheel final : public QObject {
public:
    using QObject::QObject;

    bool eventFilter(QObject *, QEvent *event) override
    {
        if (event->type() != QEvent::Wheel)
            return false;
        event->ignore(); // the form around it may scroll
        return true;
    }
};

} // namespace

QLabel *makeText(const QString &text, const QString &role, QWidget *parent)
{
    auto *label = new QLabel(text, parent);
    label->setProperty("role", role);
    label->setWordWrap(true);
    label->setTextFormat(Qt::PlainText);
    return label;
}

QPushButton *makeButton(const Theme &theme, const ButtonLook &look, QWidget *parent)
{
    auto *button = new QPushButton(look.text, parent);
    button->setObjectName(look.name);
    button->setProperty("role", look.role);
    button->setAccessibleName(look.text);
    button->setFocusPolicy(Qt::TabFocus);
    button->setAutoDefault(false);
    if (!look.symbol.isEmpty()) {
        const bool onFill = look.role == u"primary" || look.role == u"destructive";
        button->setIcon(theme.icon(look.symbol, onFill                  ? ThemeColor::onFill
                                                : look.role == u"plain" ? ThemeColor::accentText
                                                                        : ThemeColor::text));
        button->setIconSize(QSize(16, 16));
    }
    return button;
}

void makeNumberField(QAbstractSpinBox &field, int width)
{
    field.setButtonSymbols(QAbstractSpinBox::NoButtons);
    field.setAlignment(Qt::AlignCenter);
    field.setToolTip(u"直接输入，或用 ↑ ↓ 键调整"_s);
    field.setFixedWidth(width);
    field.setFocusPolicy(Qt::StrongFocus);
    field.installEventFilter(new NoWheel(&field));
}

QFrame *makeHairline(QWidget *parent)
{
    auto *line = new QFrame(parent);
    line->setProperty("role", u"hairline"_s);
    return line;
}

void setLook(QWidget *widget, const char *property, const QVariant &value)
{
    if (widget->property(property) == value)
        return;
    widget->setProperty(property, value);
    widget->style()->unpolish(widget);
    widget->style()->polish(widget);
    widget->update();
}

} // namespace velbrix
