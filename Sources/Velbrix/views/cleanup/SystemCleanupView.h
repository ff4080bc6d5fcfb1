#pragma once

#include "views/Page.h"
#include "views/ViewContext.h"

namespace velbrix {

// The system cleaner. Sizes are first asked for when it is first shown.
class SystemCleanupView final : public Page {
public:
    explicit SystemCleanupView(const ViewContext &context, QWidget *parent = nullptr);

protected:
    void showEvent(QShowEvent *event) override;

private:
    ViewContext _context;
};

} // namespace velbrix
