#pragma once

#include "maintenance/cleanup/CleanupCatalog.h"
#include "views/ViewContext.h"
#include "views/components/Card.h"

namespace velbrix {

// The built-in items under one heading.
class CleanupGroupCard final : public Card {
public:
    CleanupGroupCard(const ViewContext &context, CleanupGroup group, QWidget *parent = nullptr);

    bool isEmpty() const { return _isEmpty; }

private:
    bool _isEmpty = true;
};

} // namespace velbrix
