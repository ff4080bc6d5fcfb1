#pragma once

#include "platform/ApplicationCatalog.h"
#include "support/AnswerTime.h"

#include <optional>
#include <utility>

namespace velbrix::test {

// Applications as a list; a managed one goes from it when it is removed. The
// manager starts working when `delay` is over: until then it can be called off.
class FakeApplicationCatalog final : public ApplicationCatalog {
public:
    explicit FakeApplicationCatalog(Clock &clock) : _answer(clock) {}

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
        co_await _answer.after(delay);
        co_return std::as_const(installed);
    }
    OwnIdentity ownIdentity() const override { return own; }
    QList<LibraryFolder> libraryFolders() const override { return folders; }

    QCoro::Task<Result<QStringList>> packagesRemovedWith(const InstalledApplication application) override
    {
        calls.append(QStringLiteral("packages ") + application.package);
        co_await _answer.after(delay);
        co_return removedWith ? std::as_const(*removedWith)
                              : Result<QStringList>(QStringList{application.package});
    }
    QCoro::Task<Result<void>> removeManaged(const InstalledApplication application,
                                            Cancellation cancellation) override
    {
        calls.append(QStringLiteral("remove ") + application.package);
        co_await _answer.after(delay);
        if (cancellation.isCancelled())
            co_return velbrix::failure(QStringLiteral("已取消"));
        if (failure)
            co_return velbrix::failure(*failure);
        const auto isIt = [&](const InstalledApplication &other) {
            return other.manager == application.manager && other.package == application.package;
        };
        if (application.package.isEmpty() || !installed || installed->removeIf(isIt) == 0)
            co_return velbrix::failure(QStringLiteral("没有安装：") + application.name);
        co_return Result<void>();
    }

private:
    AnswerTime _answer;
};

} // namespace velbrix::test
