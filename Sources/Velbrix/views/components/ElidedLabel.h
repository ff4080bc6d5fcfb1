#pragma once

#include <QLabel>

namespace velbrix {

// One line of text that may be longer than its room: what does not fit is left
// out, and shown as the tool tip. text() is the whole text.
class ElidedLabel final : public QLabel {
public:
    // The role is the style sheet's.
    ElidedLabel(const QString &text, const QString &role, Qt::TextElideMode mode = Qt::ElideRight,
                QWidget *parent = nullptr);

    void setText(const QString &text);
    QSize minimumSizeHint() const override;
    QSize sizeHint() const override;

protected:
    void paintEvent(QPaintEvent *event) override;

private:
    Qt::TextElideMode _mode;
};

} // namespace velbrix
