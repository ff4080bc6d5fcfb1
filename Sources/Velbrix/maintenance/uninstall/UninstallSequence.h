#pragma once

#include "foundation/Clock.h"
#include "foundation/ProcessRunner.h"
#include "foundation/Result.h"
#include "maintenance/uninstall/DataSearch.h"

#include <QCoroTask>
#include <QObject>
#include <QSet>

namespace velbrix {

class RecordedTrash;
class RunningPrograms;

// Takes one application away, step by step. Moves nothing but the application
// itself, companions that the host named, and entries that the search finds
// anew at that moment. What its manager would delete of the user's data goes
// first and, unless ticked, comes back afterwards. One run at a time.
class UninstallSequence final : public QObject {
    Q_OBJECT

public:
    struct Outcome {
        UninstallStage stage;    // done or failed
        bool hasRemoved = false; // the application is gone
    };

    // All must outlive the sequence.
    UninstallSequence(ApplicationCatalog &catalog, const RunningPrograms &programs, RecordedTrash &trash,
                      Clock &clock)
        : _catalog(catalog), _programs(programs), _clock(clock), _trash(trash)
    {
    }

    QCoro::Task<Outcome> run(UninstallPlan plan, Cancellation cancellation);

Q_SIGNALS:
    void begun(); // nothing stands in the way
    void stageReached(const velbrix::UninstallStage &stage);
    void progressed(double value);

private:
    void prepare(UninstallPlan plan, Cancellation cancellation);
    QCoro::Task<QString> obstacle();
    QCoro::Task<QString> runningObstacle() const;
    QCoro::Task<Result<void>> takeApplication();
    QCoro::Task<Result<void>> removePackage();
    QCoro::Task<Result<QStringList>> setDataAside();
    QCoro::Task<> takeBack(QStringList paths);
    QCoro::Task<Outcome> takeTheRest();
    QCoro::Task<> takeCompanions();
    QCoro::Task<> takeData();
    QCoro::Task<> takeEntries(QStringList paths);
    QStringList ticked(const QList<ReviewItem> &found) const;
    QCoro::Task<> refuseTheRest();
    Outcome ended(UninstallStage::Kind kind, const QString &text = {});

    ApplicationCatalog &_catalog;
    const RunningPrograms &_programs;
    Clock &_clock;
    RecordedTrash &_trash;
    UninstallPlan _plan;
    Cancellation _cancellation;
    QSet<QString> _open; // ticked and not yet dealt with
    bool _hasRemoved = false;
};

} // namespace velbrix
