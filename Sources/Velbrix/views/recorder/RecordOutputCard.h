#pragma once

#include "views/ViewContext.h"
#include "views/components/Card.h"

namespace velbrix {

// Where the movies go.
class RecordOutputCard final : public Card {
public:
    explicit RecordOutputCard(const ViewContext &context, QWidget *parent = nullptr);

private:
    ViewContext _context;
};

} // namespace velbrix
