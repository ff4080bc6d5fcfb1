#pragma once

#include <QAbstractButton>

class QPainter;

namespace velbrix {

class Theme;

// A box with a tick, with or without words, that shows a model's value: the
// user's click or Space only asks for the other value.
class CheckBox final : public QAbstractButton {
    Q_OBJECT

public:
    static constexpr int side = 16;

    CheckBox(const Theme &theme, const QString &name, const QString &text = {}, QWidget *parent = nullptr);

    // Partly on, a click asks for on.
    void setState(Qt::CheckState state);
    void setOn(bool on) { setState(on ? Qt::Checked : Qt::Unchecked); }
    Qt::CheckState state() const { return _state; }
    QSize sizeHint() const override;

    // For lists that draw their own.
    static void paint(QPainter &painter, const Theme &theme, const QRectF &box, Qt::CheckState state,
                      bool enabled);

Q_SIGNALS:
    void wanted(bool on);

protected:
    void paintEvent(QPaintEvent *event) override;
    void nextCheckState() override;
    bool hitButton(const QPoint &position) const override { return rect().contains(position); }

private:
    const Theme &_theme;
    Qt::CheckState _state = Qt::Unchecked;
};

} // namespace velbrix
