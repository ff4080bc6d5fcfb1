#pragma once

#include "views/Page.h"
#include "views/ViewContext.h"

namespace velbrix {

// The screen recorder.
class RecorderPage final : public Page {
public:
    explicit RecorderPage(const ViewContext &context, QWidget *parent = nullptr);
};

} // namespace velbrix
