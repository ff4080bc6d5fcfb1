#pragma once

#include <QColor>

#include <array>
#include <optional>

namespace velbrix {

enum class ThemeColor {
    window,
    sidebar,
    card,
    text,
    secondary,
    hairline,
    control,    // resting buttons and fields
    accent,     // marks and lines
    accentFill, // under white text
    accentText, // words in the accent colour
    accentTint, // behind a selection
    good,
    warning,
    bad,
    badFill, // under white text
    onFill   // the text on a fill
};

// The colours of one appearance. Words in good, warning, bad, secondary and
// accentText are readable on window, sidebar and card alike.
class ThemeTokens {
public:
    // Without an accent of the system's the product has its own.
    ThemeTokens(bool dark, const std::optional<QColor> &systemAccent);

    bool isDark() const { return _dark; }
    QColor operator[](ThemeColor color) const { return _colors[static_cast<std::size_t>(color)]; }

private:
    QColor &slot(ThemeColor color) { return _colors[static_cast<std::size_t>(color)]; }
    QColor readableEverywhere(const QColor &color) const;

    static constexpr std::size_t count = static_cast<std::size_t>(ThemeColor::onFill) + 1;
    bool _dark;
    std::array<QColor, count> _colors;
};

// From 1 (the same) to 21 (black on white).
double contrastRatio(const QColor &one, const QColor &other);
// The colour itself, or the nearest darker or lighter one with a contrast of
// at least 4.5 to the background.
QColor readableOn(const QColor &background, const QColor &color);

} // namespace velbrix
