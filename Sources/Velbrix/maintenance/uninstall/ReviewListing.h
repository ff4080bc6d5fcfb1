#pragma once

#include "foundation/ProcessRunner.h"
#include "maintenance/uninstall/UninstallPlan.h"

#include <QCoroTask>

#include <functional>

namespace velbrix {

class DiskUsage;
class RunningPrograms;

// What would go with the plan's application, without sizes: the application,
// its companions, its data. The plan's items are ignored.
QCoro::Task<UninstallReview> listedReview(UninstallPlan plan, ApplicationCatalog &catalog,
                                          RunningPrograms &programs);

// Tells the bytes of the review's items by their index, as they are known.
QCoro::Task<> measureReview(UninstallReview review, DiskUsage &usage,
                            std::function<void(qsizetype item, qint64 bytes)> measured,
                            Cancellation cancellation);

} // namespace velbrix
