#pragma once

#include "foundation/Clock.h"
#include "foundation/Result.h"
#include "maintenance/uninstall/UninstallTypes.h"

#include <QCoroTask>
#include <QObject>

namespace velbrix {

class TrashCan;
class UninstallJournal;

// The trash with a journal: whatever goes is in a record, on disk, before it
// moves, and can be put back by it. One uninstall or putting back at a time.
// All must outlive it.
class RecordedTrash final : public QObject {
    Q_OBJECT

public:
    RecordedTrash(TrashCan &trash, UninstallJournal &journal, Clock &clock)
        : _trash(trash), _journal(journal), _clock(clock)
    {
    }

    // A new record; the former one is complete.
    void begin(const AppInfo &app);
    // Done when it has gone, be it by itself; a failure is told and recorded
    // as well. Without a record on disk nothing moves.
    QCoro::Task<Result<void>> move(QString path);
    // Back at once, and out of the record, what has moved in this one.
    QCoro::Task<> takeBack(QString path);
    // Has gone through its manager.
    QCoro::Task<> removed(QString package);
    // Stays for this reason.
    QCoro::Task<> refuse(QStringList paths, QString reason);

    // Moves back where it was what the record holds, the last one first. What has
    // gone back leaves the record, which goes when nothing is left to move.
    // Answers with how it went, for the user.
    QCoro::Task<QString> putBack(UninstallRecord record);

Q_SIGNALS:
    void failed(const velbrix::FailedItem &item);
    void recorded(); // the journal has changed

private:
    QCoro::Task<Result<void>> enter();
    QCoro::Task<> remember();
    QCoro::Task<Result<void>> restore(MovedItem item);
    void fail(const QString &path, const QString &reason);

    TrashCan &_trash;
    UninstallJournal &_journal;
    Clock &_clock;
    QString _appPath;
    UninstallRecord _record;
    bool _isUnrecorded = false;
};

} // namespace velbrix
