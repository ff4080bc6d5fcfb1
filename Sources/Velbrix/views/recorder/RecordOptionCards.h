#pragma once

#include "views/ViewContext.h"

namespace velbrix {

class Card;

// Options of a recording that are set and kept, each card without a parent.

// Frame rate, quality and whether our own windows are excluded.
Card *makePictureCard(const ViewContext &context);
// Where the movies go.
Card *makeOutputCard(const ViewContext &context);
// Protection against a recording left running by mistake.
Card *makeReminderCard(const ViewContext &context);

} // namespace velbrix
