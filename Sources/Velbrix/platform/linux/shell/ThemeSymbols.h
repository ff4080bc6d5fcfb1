#pragma once

#include "platform/Symbols.h"

namespace velbrix {

// SF Symbol names as icons of the icon theme, with the Breeze set for what the
// theme lacks and for desktops that have no icon theme.
class ThemeSymbols final : public Symbols {
public:
    ThemeSymbols();

    QIcon icon(const QString &symbolName) const override;
    // Every name that has a picture.
    static QStringList names();
};

} // namespace velbrix
