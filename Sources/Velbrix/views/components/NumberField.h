#pragma once

class QAbstractSpinBox;

namespace velbrix {

// Makes the field a plain one: numbers are typed or changed by the arrow keys,
// never by the wheel, which scrolls the form that it stands in.
void makeNumberField(QAbstractSpinBox &field, int width);

} // namespace velbrix
