#pragma once

#include "foundation/Clock.h"
#include "platform/ApplicationCatalog.h"
#include "platform/linux/applications/ApplicationPlaces.h"
#include "platform/linux/applications/PackageManager.h"

#include <QCoroTask>

namespace velbrix {

// What would go with the application, itself included; nothing is changed. A
// failure in words for the user when it must not go.
QCoro::Task<Result<QStringList>> simulateRemoval(Clock &clock, ApplicationPlaces places,
                                                 PackagePrograms programs, InstalledApplication application);

// Simulates first, so that nothing the system needs goes with it. Once the
// manager is started it is left to finish, however long it takes.
QCoro::Task<Result<void>> removeThroughManager(Clock &clock, ApplicationPlaces places,
                                               PackagePrograms programs, InstalledApplication application,
                                               Cancellation cancellation);

} // namespace velbrix
