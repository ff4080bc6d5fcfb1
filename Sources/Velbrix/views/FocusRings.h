#pragma once

#include <QObject>

namespace velbrix {

// Marks the focused widget with the property "keyed" while the focus moves by
// keyboard, so that rings are drawn for those who need them and not after
// every click.
class FocusRings final : public QObject {
public:
    explicit FocusRings(QObject *parent = nullptr);

protected:
    bool eventFilter(QObject *watched, QEvent *event) override;
};

} // namespace velbrix
