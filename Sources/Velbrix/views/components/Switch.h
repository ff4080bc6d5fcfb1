#pragma once

#include <QAbstractButton>
#include <QVariantAnimation>

namespace velbrix {

class Theme;

// An on/off switch that shows a model's value: the user's click or Space only
// asks for the other value; setOn() moves the knob.
class Switch final : public QAbstractButton {
    Q_OBJECT

public:
    Switch(const Theme &theme, const QString &name, QWidget *parent = nullptr);

    void setOn(bool on);
    QSize sizeHint() const override { return {38, 22}; }

Q_SIGNALS:
    void wanted(bool on);

protected:
    void paintEvent(QPaintEvent *event) override;
    void nextCheckState() override { Q_EMIT wanted(!isChecked()); }
    void keyPressEvent(QKeyEvent *event) override;
    bool hitButton(const QPoint &position) const override { return rect().contains(position); }

private:
    const Theme &_theme;
    QVariantAnimation _slide; // of the knob, 0 to 1
};

} // namespace velbrix
