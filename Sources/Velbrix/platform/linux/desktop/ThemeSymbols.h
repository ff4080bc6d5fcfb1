#pragma once

#include "platform/Symbols.h"

#include <QStringList>

namespace velbrix {

// SF Symbol names as drawings of the Breeze icon set, whatever icon theme the
// desktop has; without that set, as icons of the desktop's theme.
class ThemeSymbols final : public Symbols {
public:
    ThemeSymbols();

    QIcon icon(const QString &symbolName) const override;
    // Every name that has a picture.
    static QStringList names();

private:
    const QStringList _folders; // of icon themes
};

} // namespace velbrix
