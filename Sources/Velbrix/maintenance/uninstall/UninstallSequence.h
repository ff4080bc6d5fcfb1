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
    UninstallSequence(ApplicationCatalog &catalog, RecordedTrash &trash, Clock &clock)
        : _catalog(catalog), _clock(clock), _trash(trash)
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
    RecordedTrash &_trash;
    UninstallPlan _plan;
    Cancellation _cancellation;
    QSet<QString> _open; // ticked and not yet dealt with
    bool _hasRemoved = false;
};

} // namespace velbrix
