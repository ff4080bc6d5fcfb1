#pragma once

#include "views/Page.h"
#include "views/ViewContext.h"

namespace velbrix {

// The system cleaner.
class SystemCleanupView final : public Page {
public:
    explicit SystemCleanupView(const ViewContext &context, QWidget *parent = nullptr);
};

} // namespace velbrix
