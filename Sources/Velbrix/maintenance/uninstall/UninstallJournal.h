#pragma once

#include "foundation/Result.h"
#include "maintenance/uninstall/UninstallTypes.h"

#include <QCoroTask>
#include <QList>
#include <QString>

namespace velbrix {

// The last uninstalls, in a file private to the user, so that what went can go
// back. Main thread; the writing is done off it, in order. A kill or a power
// cut leaves the record of what had been written last.
class UninstallJournal {
public:
    static constexpr qsizetype keptRecords = 10;

    // Reads the file. One that makes no sense is kept under a name ending in
    // ".damaged"; items of unknown whereabouts that are still in their place
    // were never moved and are left out.
    explicit UninstallJournal(QString file);

    const QList<UninstallRecord> &records() const { return _records; } // newest first

    // Enters the record, or replaces the one of the same id. One that tells
    // of nothing leaves. Answers when it has reached the disk.
    QCoro::Task<Result<void>> put(UninstallRecord record);
    QCoro::Task<Result<void>> remove(QString id);

private:
    void load();
    QCoro::Task<Result<void>> save();

    const QString _file;
    QList<UninstallRecord> _records;
};

} // namespace velbrix
