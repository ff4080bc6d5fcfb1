#pragma once

#include "views/Page.h"
#include "views/ViewContext.h"

namespace velbrix {

// What belongs to the program as a whole.
class SettingsPage final : public Page {
public:
    explicit SettingsPage(const ViewContext &context, QWidget *parent = nullptr);
};

} // namespace velbrix
