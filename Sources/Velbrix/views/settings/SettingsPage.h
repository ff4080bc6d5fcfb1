#pragma once

#include "views/Page.h"
#include "views/ViewContext.h"

#include <functional>

namespace velbrix {

// What belongs to the program as a whole.
class SettingsPage final : public Page {
public:
    // `review` shows the privacy statement again.
    SettingsPage(const ViewContext &context, std::function<void()> review, QWidget *parent = nullptr);
};

} // namespace velbrix
