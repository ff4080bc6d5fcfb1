#pragma once

#include "views/ViewContext.h"
#include "views/components/Card.h"

namespace velbrix {

// How the last recording ended: why it failed, and what it has left.
class RecordOutcomeCard final : public Card {
public:
    explicit RecordOutcomeCard(const ViewContext &context, QWidget *parent = nullptr);
};

} // namespace velbrix
