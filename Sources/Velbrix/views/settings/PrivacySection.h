#pragma once

#include "views/ViewContext.h"
#include "views/components/Card.h"

#include <functional>

namespace velbrix {

// The statement that was agreed to.
class PrivacySection final : public Card {
public:
    PrivacySection(const ViewContext &context, std::function<void()> review, QWidget *parent = nullptr);
};

} // namespace velbrix
