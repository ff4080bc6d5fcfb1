#pragma once

#include "foundation/Clock.h"
#include "platform/ApplicationCatalog.h"
#include "platform/linux/applications/ApplicationPlaces.h"
#include "platform/linux/applications/PackageManager.h"

#include <QThreadPool>

#include <memory>

namespace velbrix {

// Desktop entries, AppImages, Flatpaks and snaps. Files are read on a thread
// of its own; other programs answer for what they manage. A task goes on when
// the catalog is destroyed.
class LinuxApplicationCatalog final : public ApplicationCatalog {
public:
    // The clock must outlive every task.
    LinuxApplicationCatalog(Clock &clock, ApplicationPlaces places, PackagePrograms programs);

    QCoro::Task<Result<QList<InstalledApplication>>> applications() override;
    OwnIdentity ownIdentity() const override;
    QList<LibraryFolder> libraryFolders() const override;
    QCoro::Task<Result<QStringList>> packagesRemovedWith(const InstalledApplication application) override;
    // Can be called off until the manager is started.
    QCoro::Task<Result<void>> removeManaged(const InstalledApplication application, const QStringList agreed,
                                            Cancellation cancellation) override;

private:
    Clock &_clock;
    ApplicationPlaces _places;
    PackagePrograms _programs;
    std::shared_ptr<QThreadPool> _threads;
};

} // namespace velbrix
