#pragma once

#include "foundation/Clock.h"
#include "platform/ApplicationCatalog.h"

#include <optional>
#include <utility>

namespace velbrix::test {

// Applications as a list; a managed one goes from it when it is removed. The
// manager starts working when `delay` is over: until then it can be called off.
class FakeApplicationCatalog final : public ApplicationCatalog {
public:
    explicit FakeApplicationCatalog(Clock &clock) : _clock(clock) {}

    Result<QList<InstalledApplication>> installed = QList<InstalledApplication>();
    OwnIdentity own{QStringLiteral("/opt/Velbrix/velbrix"), QStringLiteral("Velbrix"),
                    QStringLiteral("velbrix")};
    QList<LibraryFolder> folders;
    std::optional<Result<QStringList>> removedWith; // else only the package itself
    std::optional<QString> failure;                 // of removeManaged
    std::chrono::milliseconds delay{0};             // of every task
    QStringList calls;                              // "applications", "packages gimp", "remove gimp"

    QCoro::Task<Result<QList<InstalledApplication>>> applications() override
    {
        calls.append(QStringLiteral("applications"));
        if (delay.count() > 0)
            co_await Pause(_clock, delay);
        co_return std::as_const(installed);
    }
    OwnIdentity ownIdentity() const override { return own; }
    QList<LibraryFolder> libraryFolders() const override { return folders; }

    QCoro::Task<Result<QStringList>> packagesRemovedWith(const InstalledApplication application) override
    {
        calls.append(QStringLiteral("packages ") + application.package);
        if (delay.count() > 0)
            co_await Pause(_clock, delay);
        co_return removedWith ? std::as_const(*removedWith)
                              : Result<QStringList>(QStringList{application.package});
    }
    QCoro::Task<Result<void>> removeManaged(const InstalledApplication application,
                                            Cancellation cancellation) override
    {
        calls.append(QStringLiteral("remove ") + application.package);
        if (delay.count() > 0)
            co_await Pause(_clock, delay);
        if (cancellation.isCancelled())
            co_return velbrix::failure(QStringLiteral("已取消"));
        if (failure)
            co_return velbrix::failure(*failure);
        if (installed)
            installed->removeIf([&](const InstalledApplication &other) {
                return other.manager == application.manager && other.package == application.package;
            });
        co_return Result<void>();
    }

private:
    Clock &_clock;
};

} // namespace velbrix::test
