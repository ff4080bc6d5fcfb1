#pragma once

#include <QColor>
#include <QList>
#include <QWidget>

namespace velbrix {

class Theme;

// A white symbol on a rounded square with a gradient from the first to the
// last of the colours.
class GradientIcon final : public QWidget {
public:
    GradientIcon(const Theme &theme, const QString &symbol, const QList<QColor> &colors,
                 QWidget *parent = nullptr);

protected:
    void paintEvent(QPaintEvent *event) override;

private:
    const Theme &_theme;
    QString _symbol;
    QList<QColor> _colors;
};

} // namespace velbrix
