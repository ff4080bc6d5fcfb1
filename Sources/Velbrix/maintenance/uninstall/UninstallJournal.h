#pragma once

#include "foundation/Result.h"
#include "maintenance/uninstall/UninstallTypes.h"

#include <QCoroTask>
#include <QFuture>
#include <QList>
#include <QString>

#include <memory>

namespace velbrix {

// The last uninstalls, in a file private to the user, so that what went can go
// back. Main thread; reading and writing are done off it, in order. A kill or a
// power cut leaves the record of what had been written last.
class UninstallJournal {
public:
    static constexpr qsizetype keptRecords = 10;

    // Begins to read the file. When not all of it makes sense, the rest goes on
    // and the file is kept under a name ending in ".damaged"; one that is out
    // of reach is not replaced, so that no record can be entered. Items of
    // unknown whereabouts that are still in their place were never moved and
    // are left out.
    explicit UninstallJournal(const QString &file);

    // Answers when the file has been read; until then there are no records.
    QCoro::Task<> loaded() const;
    // What was wrong with the file, in words for the user; mostly empty.
    const QString &problem() const { return _state->problem; }
    const QList<UninstallRecord> &records() const { return _state->records; } // newest first

    // Enters the record, or replaces the one of the same id. One that tells
    // of nothing leaves. Answers when it has reached the disk; when it cannot,
    // the list has it all the same.
    QCoro::Task<Result<void>> put(UninstallRecord record);
    // Stays in the list when it stays on the disk.
    QCoro::Task<Result<void>> remove(QString id);

private:
    struct State {
        QString file;
        QList<UninstallRecord> records = {};
        QString problem = {};
        bool isOutOfReach = false;
        bool isLoaded = false;
    };

    static State read(const QString &file);
    static void keepAside(State &state);
    static QCoro::Task<> load(std::shared_ptr<State> state, QFuture<State> reading);
    static QCoro::Task<Result<void>> save(std::shared_ptr<State> state);

    const std::shared_ptr<State> _state; // a task may outlive the journal
    const QFuture<State> _reading;
};

} // namespace velbrix
