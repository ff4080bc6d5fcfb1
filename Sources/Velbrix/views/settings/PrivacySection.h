#pragma once

#include "views/ViewContext.h"
#include "views/components/Card.h"

namespace velbrix {

// The statement that was agreed to.
class PrivacySection final : public Card {
public:
    explicit PrivacySection(const ViewContext &context, QWidget *parent = nullptr);
};

} // namespace velbrix
