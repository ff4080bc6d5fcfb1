#include "views/ThemeTokens.h"

#include <algorithm>
#include <cmath>

namespace velbrix {
namespace {

constexpr double leastContrast = 4.5;

double luminance(const QColor &color)
{
    const auto linear = [](double part) {
        return part <= 0.04045 ? part / 12.92 : std::pow((part + 0.055) / 1.055, 2.4);
    };
    return 0.2126 * linear(color.redF()) + 0.7152 * linear(color.greenF()) + 0.0722 * linear(color.blueF());
}

QColor mixed(const QColor &one, const QColor &other, float share)
{
    return QColor::fromRgbF(one.redF() + (other.redF() - one.redF()) * share,
                            one.greenF() + (other.greenF() - one.greenF()) * share,
                            one.blueF() + (other.blueF() - one.blueF()) * share);
}

} // namespace

double contrastRatio(const QColor &one, const QColor &other)
{
    const double first = luminance(one);
    const double second = luminance(other);
    return (std::max(first, second) + 0.05) / (std::min(first, second) + 0.05);
}

QColor readableOn(const QColor &background, const QColor &color)
{
    const QColor away = luminance(background) > 0.18 ? QColor(Qt::black) : QColor(Qt::white);
    QColor found = color;
    for (float share = 0; share <= 1 && contrastRatio(found, background) < leastContrast; share += 0.02F)
        found = mixed(color, away, share);
    return found;
}

ThemeTokens::ThemeTokens(bool dark, const std::optional<QColor> &systemAccent) : _dark(dark)
{
    const auto set = [&](ThemeColor color, const char *light, const char *night) {
        slot(color) = QColor(QLatin1String(dark ? night : light));
    };
    set(ThemeColor::window, "#F5F5F7", "#1E1E1F");
    set(ThemeColor::sidebar, "#ECECEF", "#252527");
    set(ThemeColor::card, "#FFFFFF", "#2B2B2D");
    set(ThemeColor::text, "#1D1D1F", "#F5F5F7");
    set(ThemeColor::secondary, "#6E6E73", "#A1A1A6");
    set(ThemeColor::hairline, "#E3E3E8", "#3A3A3C");
    set(ThemeColor::control, "#F2F2F5", "#3A3A3D");
    set(ThemeColor::accent, "#0A7AFF", "#2F8DFF");
    set(ThemeColor::good, "#248A3D", "#32D74B");
    set(ThemeColor::warning, "#B25000", "#FF9F0A");
    set(ThemeColor::bad, "#D70015", "#FF6961");
    set(ThemeColor::onFill, "#FFFFFF", "#FFFFFF");

    if (systemAccent)
        slot(ThemeColor::accent) = *systemAccent;
    const QColor accent = (*this)[ThemeColor::accent];
    slot(ThemeColor::accentFill) = readableOn(Qt::white, accent);
    slot(ThemeColor::accentText) = readableEverywhere(accent);
    slot(ThemeColor::accentTint) = mixed((*this)[ThemeColor::sidebar], accent, dark ? 0.28F : 0.14F);
    set(ThemeColor::badFill, "#D70015", "#D92D27");
    for (const ThemeColor words :
         {ThemeColor::secondary, ThemeColor::good, ThemeColor::warning, ThemeColor::bad})
        slot(words) = readableEverywhere((*this)[words]);
}

QColor ThemeTokens::readableEverywhere(const QColor &color) const
{
    QColor found = color;
    for (const ThemeColor background : {ThemeColor::card, ThemeColor::window, ThemeColor::sidebar})
        found = readableOn((*this)[background], found);
    return found;
}

} // namespace velbrix
