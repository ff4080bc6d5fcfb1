#pragma once

#include <QLabel>

namespace velbrix {

// One line that gives way in its middle when there is too little room; the
// whole text stays in reach of tool tip and assistive technologies.
class ElidedLabel final : public QLabel {
public:
    // The role is the style sheet's.
    ElidedLabel(const QString &text, const QString &role, QWidget *parent = nullptr);

    // The tip is the text itself unless another is given.
    void show(const QString &text, const QString &tip = {});

    QSize minimumSizeHint() const override;
    QSize sizeHint() const override;

protected:
    void paintEvent(QPaintEvent *event) override;
};

} // namespace velbrix
