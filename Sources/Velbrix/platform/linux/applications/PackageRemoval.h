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

// Simulates first, so that nothing goes with it that the system needs or that
// was not agreed to. Once the manager is started it is left to finish, however
// long it takes.
QCoro::Task<Result<void>> removeThroughManager(Clock &clock, ApplicationPlaces places,
                                               PackagePrograms programs, InstalledApplication application,
                                               QStringList agreed, Cancellation cancellation);

} // namespace velbrix
