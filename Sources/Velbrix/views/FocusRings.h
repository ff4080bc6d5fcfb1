#pragma once

#include <QObject>

namespace velbrix {

// Marks the focused widget with the property "keyed" when the focus came to it
// by keyboard, or while the keyboard is what the user works with, so that rings
// are drawn for those who need them and not after every click.
class FocusRings final : public QObject {
public:
    explicit FocusRings(QObject *parent = nullptr);

protected:
    bool eventFilter(QObject *watched, QEvent *event) override;

private:
    bool _isByKeyboard = false;
};

} // namespace velbrix
