#pragma once

#include "foundation/Clock.h"
#include "foundation/ProcessRunner.h"
#include "maintenance/uninstall/UninstallPlan.h"

#include <QCoroTask>
#include <QObject>
#include <QSet>

namespace velbrix {

class TrashCan;
class UninstallJournal;

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
    UninstallSequence(ApplicationCatalog &catalog, TrashCan &trash, UninstallJournal &journal, Clock &clock,
                      QObject *parent = nullptr);

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
    QCoro::Task<Result<void>> move(QString path);
    QCoro::Task<> remember();
    void fail(const QString &path, const QString &reason);
    Outcome ended(UninstallStage::Kind kind, const QString &text = {});

    ApplicationCatalog &_catalog;
    TrashCan &_trash;
    UninstallJournal &_journal;
    Clock &_clock;
    UninstallPlan _plan;
    Cancellation _cancellation;
    UninstallRecord _record;
    QSet<QString> _open; // ticked and not yet dealt with
    bool _hasRemoved = false;
    bool _isUnrecorded = false;
};

} // namespace velbrix
