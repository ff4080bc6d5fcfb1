#pragma once

#include "views/ViewContext.h"
#include "views/components/Card.h"

namespace velbrix {

// Starting with the session.
class LoginSection final : public Card {
public:
    explicit LoginSection(const ViewContext &context, QWidget *parent = nullptr);
};

} // namespace velbrix
