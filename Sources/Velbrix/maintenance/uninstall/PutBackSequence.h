#pragma once

#include "maintenance/uninstall/UninstallTypes.h"

#include <QCoroTask>
#include <QObject>

namespace velbrix {

class TrashCan;
class UninstallJournal;

// Puts back where it was what an uninstall has moved to the trash. One run at
// a time. Trash and journal must outlive the sequence.
class PutBackSequence final : public QObject {
    Q_OBJECT

public:
    PutBackSequence(TrashCan &trash, UninstallJournal &journal) : _trash(trash), _journal(journal) {}

    // The last one first. What has gone back leaves the record, which goes when
    // nothing is left to move. Answers with how it went, for the user.
    QCoro::Task<QString> run(UninstallRecord record);

Q_SIGNALS:
    void failed(const velbrix::FailedItem &item);
    void recorded(); // the journal has changed

private:
    TrashCan &_trash;
    UninstallJournal &_journal;
};

} // namespace velbrix
