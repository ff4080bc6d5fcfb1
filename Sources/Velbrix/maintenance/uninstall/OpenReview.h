#pragma once

#include "foundation/Clock.h"
#include "foundation/ProcessRunner.h"
#include "foundation/Published.h"
#include "maintenance/uninstall/DataSearch.h"

#include <QCoroTask>
#include <QHash>
#include <QObject>

#include <functional>
#include <memory>
#include <optional>

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

// The review that lies open for the user's ticks, if there is one.
class OpenReview final : public QObject {
    Q_OBJECT
    VELB_PUBLISHED(OpenReview, bool, isPreparing, false)
    // Whether it is running follows the application.
    VELB_PUBLISHED(OpenReview, std::optional<UninstallReview>, review)

public:
    struct Ports {
        ApplicationCatalog &catalog;
        DiskUsage &usage;
        RunningPrograms &programs;
    };

    // All must outlive it.
    OpenReview(Ports ports, Clock &clock) : _ports(ports), _clock(clock) {}
    ~OpenReview() override { _wanted.cancel(); }

    // Looks for what belongs to the plan's application and opens the review of
    // it; sizes follow as they are known. Takes the place of an earlier one.
    void prepare(const UninstallPlan &plan);
    // The application itself cannot be unticked.
    void setTicked(const QString &path, bool isTicked);
    // Also one that is being prepared.
    void close();

private:
    QCoro::Task<> run(UninstallPlan plan, Cancellation wanted);
    void showSizes();
    QCoro::Task<> askRunning(Cancellation wanted);

    Ports _ports;
    Clock &_clock;
    Cancellation _wanted;
    QHash<qsizetype, qint64> _sizes; // of the review's items, not yet shown
    std::unique_ptr<Alarm> _sizesDue;
    std::unique_ptr<Alarm> _runningDue;
};

} // namespace velbrix
