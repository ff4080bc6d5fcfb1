#pragma once

#include "views/ViewContext.h"
#include "views/components/Card.h"

namespace velbrix {

// Protection against a recording left running by mistake.
class RecordReminderCard final : public Card {
public:
    explicit RecordReminderCard(const ViewContext &context, QWidget *parent = nullptr);
};

} // namespace velbrix
