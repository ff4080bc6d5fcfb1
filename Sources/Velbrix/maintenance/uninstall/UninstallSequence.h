#pragma once

#include "foundation/Clock.h"
#include "foundation/ProcessRunner.h"
#include "maintenance/uninstall/RecordedTrash.h"
#include "maintenance/uninstall/UninstallPlan.h"

#include <QCoroTask>
#include <QObject>
#include <QSet>

namespace velbrix {

// Takes one application away, step by step. Moves nothing but the application
// itself, companions that the host named, and entries that the search finds
// anew at that moment. One run at a time.
class UninstallSequence final : public QObject {
    Q_OBJECT

public:
    struct Outcome {
        UninstallStage stage;    // done or failed
        bool hasRemoved = false; // the application is gone
    };

    // All must outlive the sequence.
    UninstallSequence(ApplicationCatalog &catalog, TrashCan &trash, UninstallJournal &journal, Clock &clock);

    QCoro::Task<Outcome> run(UninstallPlan plan, Cancellation cancellation);

Q_SIGNALS:
    void begun(); // nothing stands in the way
    void stageReached(const velbrix::UninstallStage &stage);
    void progressed(double value);
    void failed(const velbrix::FailedItem &item);
    void recorded(); // the journal has changed

private:
    void prepare(UninstallPlan plan, Cancellation cancellation);
    QCoro::Task<QString> obstacle();
    QCoro::Task<Result<void>> takeApplication();
    QCoro::Task<Outcome> takeTheRest();
    QCoro::Task<> takeCompanions();
    QCoro::Task<> takeData();
    QCoro::Task<> takeEntries(QStringList paths);
    QStringList ticked(const QList<ReviewItem> &found) const;
    QCoro::Task<> refuseTheRest();
    Outcome ended(UninstallStage::Kind kind, const QString &text = {});

    ApplicationCatalog &_catalog;
    Clock &_clock;
    RecordedTrash _trash;
    UninstallPlan _plan;
    Cancellation _cancellation;
    QSet<QString> _open; // ticked and not yet dealt with
    bool _hasRemoved = false;
};

} // namespace velbrix
