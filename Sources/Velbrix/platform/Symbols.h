#pragma once

#include <QIcon>
#include <QString>

namespace velbrix {

// Pictures for SF Symbol names, which are the keys on every host. Main thread.
class Symbols {
public:
    virtual ~Symbols() = default;

    // Single-colour, to be tinted by the caller. Null for an unknown name.
    virtual QIcon icon(const QString &symbolName) const = 0;
};

} // namespace velbrix
