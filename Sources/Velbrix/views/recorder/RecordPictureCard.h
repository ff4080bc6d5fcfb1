#pragma once

#include "views/ViewContext.h"
#include "views/components/Card.h"

namespace velbrix {

// Frame rate, quality and what is left out of the picture.
class RecordPictureCard final : public Card {
public:
    explicit RecordPictureCard(const ViewContext &context, QWidget *parent = nullptr);
};

} // namespace velbrix
