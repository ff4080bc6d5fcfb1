#pragma once

#include <QWidget>

namespace velbrix {

// A number that changes often: every digit takes the same room, and only this
// label is drawn again. Drawn in the widget's font and text colour.
class TabularLabel final : public QWidget {
public:
    explicit TabularLabel(QWidget *parent = nullptr);

    void setText(const QString &text);
    QString text() const { return _text; }
    QSize sizeHint() const override;

protected:
    void paintEvent(QPaintEvent *event) override;

private:
    int advance(QChar character) const;
    int textWidth() const;

    QString _text;
};

} // namespace velbrix
