#pragma once

#include "foundation/Observation.h"
#include "views/ThemeTokens.h"

#include <QFont>
#include <QIcon>
#include <QObject>
#include <QPixmap>
#include <QString>

namespace velbrix {

class DesktopServices;
class Symbols;

// How everything looks: colours, type, pictures and motion, in one place. It
// dresses the whole application and follows the system's appearance, unless
// VELBRIX_THEME (light or dark) fixes one. Both hosts' services must outlive it.
class Theme final : public QObject {
    Q_OBJECT

public:
    Theme(DesktopServices &desktop, const Symbols &symbols, QObject *parent = nullptr);

    const ThemeTokens &tokens() const { return _tokens; }
    QColor color(ThemeColor color) const { return _tokens[color]; }
    bool isDark() const { return _tokens.isDark(); }

    // The symbol in one colour; null for an unknown name.
    QPixmap symbol(const QString &name, int points, const QColor &tint, qreal pixelRatio) const;
    // The same as an icon that follows the appearance.
    QIcon icon(const QString &symbolName, ThemeColor tint) const;

    QFont font(int pixels, QFont::Weight weight = QFont::Normal) const;
    // Milliseconds, or 0 when the system asks for less motion.
    int motion(int milliseconds) const;

Q_SIGNALS:
    void changed();

private:
    bool wantsDark() const;
    void dress();

    DesktopServices &_desktop;
    const Symbols &_symbols;
    std::optional<QColor> _systemAccent;
    ThemeTokens _tokens;
    Observation _themeChanges;
};

} // namespace velbrix
