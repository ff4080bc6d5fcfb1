#pragma once

#include "views/ThemeTokens.h"

#include <QWidget>

namespace velbrix {

class Theme;

// One symbol in a colour of the theme.
class SymbolLabel final : public QWidget {
public:
    SymbolLabel(const Theme &theme, const QString &symbol, int points, ThemeColor tint,
                QWidget *parent = nullptr);

    void show(const QString &symbol, ThemeColor tint);

protected:
    void paintEvent(QPaintEvent *event) override;

private:
    const Theme &_theme;
    QString _symbol;
    ThemeColor _tint;
};

} // namespace velbrix
