#pragma once

#include "foundation/Clock.h"
#include "platform/ApplicationCatalog.h"
#include "platform/linux/applications/ApplicationPlaces.h"
#include "platform/linux/applications/PackagePrograms.h"

#include <QCoroTask>

namespace velbrix {

// Takes an application off the host through what manages it.
QCoro::Task<Result<QStringList>> simulateRemoval(Clock &clock, ApplicationPlaces places,
                                                 PackagePrograms programs, InstalledApplication application);

// Simulates first, so that nothing the system needs goes with it. Once the
// manager is started it is left to finish, however long it takes.
QCoro::Task<Result<void>> removeThroughManager(Clock &clock, ApplicationPlaces places,
                                               PackagePrograms programs, InstalledApplication application,
                                               Cancellation cancellation);

} // namespace velbrix
