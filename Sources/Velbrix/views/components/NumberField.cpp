#include "views/components/NumberField.h"

#include <QAbstractSpinBox>
#include <QEvent>

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

void makeNumberField(QAbstractSpinBox &field, int width)
{
    field.setButtonSymbols(QAbstractSpinBox::NoButtons);
    field.setAlignment(Qt::AlignCenter);
    field.setToolTip(u"直接输入，或用 ↑ ↓ 键调整"_s);
    field.setFixedWidth(width);
    field.setFocusPolicy(Qt::StrongFocus);
    field.installEventFilter(new NoWheel(&field));
}

} // namespace velbrix
