#pragma once

#include "views/ViewContext.h"
#include "views/components/Card.h"

namespace velbrix {

// The shortcuts of the tools that exist.
class HotkeySection final : public Card {
public:
    explicit HotkeySection(const ViewContext &context, QWidget *parent = nullptr);
};

} // namespace velbrix
