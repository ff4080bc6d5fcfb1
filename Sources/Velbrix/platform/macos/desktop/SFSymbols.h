#pragma once

#include "platform/Symbols.h"

namespace velbrix {

// The system's own symbols, drawn at the size that is asked for.
class SFSymbols final : public Symbols {
public:
    QIcon icon(const QString &symbolName) const override;
};

} // namespace velbrix
