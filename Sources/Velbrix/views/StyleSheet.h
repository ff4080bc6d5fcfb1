#pragma once

#include <QString>

namespace velbrix {

class ThemeTokens;

// The one style sheet. Widgets are told apart by their dynamic property "role".
QString styleSheet(const ThemeTokens &tokens);

} // namespace velbrix
