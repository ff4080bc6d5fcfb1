#pragma once

#include "views/ViewContext.h"
#include "views/components/Card.h"

namespace velbrix {

// How the last recording ended: why it failed, or where the movie is.
class RecordOutcomeCard final : public Card {
public:
    explicit RecordOutcomeCard(const ViewContext &context, QWidget *parent = nullptr);

private:
    void addFailure();
    void addResult();
    void refresh();

    ViewContext _context;
};

} // namespace velbrix
