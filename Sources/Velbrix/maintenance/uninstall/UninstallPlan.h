#pragma once

#include "maintenance/uninstall/DataSearch.h"
#include "maintenance/uninstall/UninstallTypes.h"

namespace velbrix {

// What is to go, and within what bounds.
struct UninstallPlan {
    UninstallReview review;
    DataSearch search; // its folders are those from which data may go
};

} // namespace velbrix
