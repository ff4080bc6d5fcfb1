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

    // Reads the file. When not all of it makes sense, the rest goes on and the
    // file is kept under a name ending in ".damaged"; one that is out of reach
    // is not replaced, so that no record can be entered. Items of unknown
    // whereabouts that are still in their place were never moved and are left
    // out.
    explicit UninstallJournal(QString file);

    // What was wrong with the file, in words for the user; mostly empty.
    const QString &problem() const { return _problem; }
    const QList<UninstallRecord> &records() const { return _records; } // newest first

    // Enters the record, or replaces the one of the same id. One that tells
    // of nothing leaves. Answers when it has reached the disk.
    QCoro::Task<Result<void>> put(UninstallRecord record);
    QCoro::Task<Result<void>> remove(QString id);

private:
    void load();
    void keepAside();
    QCoro::Task<Result<void>> save();

    const QString _file;
    QList<UninstallRecord> _records;
    QString _problem;
    bool _isOutOfReach = false;
};

} // namespace velbrix
