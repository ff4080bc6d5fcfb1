#pragma once

#include "views/ViewContext.h"
#include "views/components/Card.h"

namespace velbrix {

// Name, version and host.
class AboutSection final : public Card {
public:
    explicit AboutSection(const ViewContext &context, QWidget *parent = nullptr);
};

} // namespace velbrix
