#pragma once

#include "foundation/Paths.h"
#include "platform/AdminShell.h"
#include "platform/ApplicationCatalog.h"
#include "platform/RunningPrograms.h"
#include "support/AnswerTime.h"

namespace velbrix::test {

class FakeAdminShell final : public AdminShell {
public:
    explicit FakeAdminShell(Clock &clock) : _answer(clock) {}

    // What a line comes to; success without output unless the test says otherwise.
    std::function<Result<ProcessOutcome>(const QString &line)> answer = [](const QString &) {
        return ProcessOutcome();
    };
    std::chrono::milliseconds delay{0}; // as long as the prompt stands open
    QStringList lines;

    QCoro::Task<Result<ProcessOutcome>> run(const QString line, Cancellation cancellation) override
    {
        lines.append(line);
        co_await _answer.after(delay);
        if (cancellation.isCancelled())
            co_return ProcessOutcome{.cancelled = true, .output = {}, .errorOutput = {}};
        co_return answer(line);
    }

private:
    AnswerTime _answer;
};

// Applications as a list; a managed one goes from it when it is removed. The
// manager starts working when `delay` is over: until then it can be called off.
class FakeApplicationCatalog final : public ApplicationCatalog {
public:
    explicit FakeApplicationCatalog(Clock &clock) : _answer(clock) {}

    Result<QList<InstalledApplication>> installed = QList<InstalledApplication>();
    OwnIdentity own{u"/opt/Velbrix/velbrix"_s, u"Velbrix"_s, u"velbrix"_s};
    QList<LibraryFolder> folders;
    std::optional<Result<QStringList>> removedWith; // else only the package itself
    std::optional<QString> failure;                 // of removeManaged
    std::chrono::milliseconds delay{0};             // of every task
    QStringList calls;                              // "applications", "packages gimp", "remove gimp"

    QCoro::Task<Result<QList<InstalledApplication>>> applications() override
    {
        calls << u"applications"_s;
        co_await _answer.after(delay);
        co_return std::as_const(installed);
    }
    OwnIdentity ownIdentity() const override { return own; }
    QList<LibraryFolder> libraryFolders() const override { return folders; }

    QCoro::Task<Result<QStringList>> packagesRemovedWith(const InstalledApplication application) override
    {
        calls << u"packages "_s + application.package;
        co_await _answer.after(delay);
        co_return removedWith.value_or(QStringList{application.package});
    }
    QCoro::Task<Result<void>> removeManaged(const InstalledApplication application, const QStringList agreed,
                                            Cancellation cancellation) override
    {
        calls << u"remove "_s + application.package;
        co_await _answer.after(delay);
        if (cancellation.isCancelled())
            co_return velbrix::failure(u"已取消"_s);
        const Result<QStringList> going = removedWith.value_or(QStringList{application.package});
        const auto isAgreed = [&](const QString &package) { return agreed.contains(package); };
        if (failure || !going || !std::ranges::all_of(*going, isAgreed))
            co_return velbrix::failure(failure.value_or(u"确认时没有列出"_s));
        const auto isIt = [&](const InstalledApplication &other) {
            return other.manager == application.manager && other.package == application.package;
        };
        if (application.package.isEmpty() || !installed || installed->removeIf(isIt) == 0)
            co_return velbrix::failure(u"没有安装："_s + application.name);
        co_return Result<void>();
    }

private:
    AnswerTime _answer;
};

class FakeRunningPrograms final : public RunningPrograms {
public:
    QSet<QString> names;     // of what runs
    QStringList executables; // of what runs
    std::optional<QSet<QByteArray>> sockets = QSet<QByteArray>();

    QCoro::Task<QSet<QString>> running(QStringList wanted) const override
    {
        co_await _answer.after();
        const QSet<QString> found = QSet<QString>(wanted.begin(), wanted.end()).intersect(names);
        co_return found;
    }
    QCoro::Task<bool> runsFrom(QStringList paths) const override
    {
        co_await _answer.after();
        const bool isFound = std::ranges::any_of(executables, [&](const QString &executable) {
            return std::ranges::any_of(paths,
                                       [&](const QString &path) { return isWithin(executable, path); });
        });
        co_return isFound;
    }
    QCoro::Task<std::optional<QSet<QByteArray>>> boundSockets() const override
    {
        co_await _answer.after();
        co_return std::as_const(sockets);
    }

private:
    mutable AnswerTime _answer;
};

} // namespace velbrix::test
