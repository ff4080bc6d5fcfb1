#pragma once

#include <QScrollArea>

namespace velbrix {

// As high as what it holds, and scrolls where there is less room.
class ScrollingBody final : public QScrollArea {
public:
    explicit ScrollingBody(QWidget *content, QWidget *parent = nullptr);

    QSize sizeHint() const override;
    QSize minimumSizeHint() const override;

protected:
    bool eventFilter(QObject *watched, QEvent *event) override;
    void resizeEvent(QResizeEvent *event) override;
};

} // namespace velbrix
