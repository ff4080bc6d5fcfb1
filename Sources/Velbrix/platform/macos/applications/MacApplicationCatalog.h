#pragma once

#include "platform/ApplicationCatalog.h"

namespace velbrix {

// The bundles in /Applications, and unlisted those elsewhere. Each is looked into on the global queue.
class MacApplicationCatalog final : public ApplicationCatalog {
public:
    QCoro::Task<Result<QList<InstalledApplication>>> applications() override;
    OwnIdentity ownIdentity() const override;
    QList<LibraryFolder> libraryFolders() const override;
    // Nothing is managed here.
    QCoro::Task<Result<QStringList>> packagesRemovedWith(const InstalledApplication application) override;
    QCoro::Task<Result<void>> removeManaged(const InstalledApplication application, const QStringList agreed,
                                            Cancellation cancellation) override;
};

} // namespace velbrix
