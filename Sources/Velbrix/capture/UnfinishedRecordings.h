#pragma once

#include "foundation/FileThreads.h"
#include "foundation/Published.h"
#include "platform/MovieFiles.h"

#include <QCoroTask>
#include <QObject>
#include <QStringList>

namespace velbrix {

class RecorderLog;
class SettingsStore;

// Remembers which movie is being written, so that the next start of the
// program finds what a crash has left, and repairs it when the user wishes.
class UnfinishedRecordings final : public QObject {
    Q_OBJECT
    // Movies of earlier runs that were never completed and still exist.
    VELB_PUBLISHED(UnfinishedRecordings, QStringList, leftovers)
    VELB_PUBLISHED(UnfinishedRecordings, bool, isRepairing, false)
    VELB_PUBLISHED(UnfinishedRecordings, QString, problem) // of the last repair; empty when it went well

public:
    UnfinishedRecordings(SettingsStore &settings, MovieFiles &movies, Clock &clock, RecorderLog &log,
                         QObject *parent = nullptr);

    // Once at start-up. What lies on a disk that does not answer is remembered for
    // the next one.
    QCoro::Task<> findLeftovers();
    // On disk when it returns.
    void begin(const QString &path);
    void end(const QString &path);

    void repair(const QString &path);
    // Forgets the leftover; the file stays as it is.
    void dismiss(const QString &path);

private:
    QCoro::Task<> runRepair(QString path);
    QStringList stored() const;
    void store(const QStringList &paths);

    SettingsStore &_settings;
    MovieFiles &_movies;
    RecorderLog &_log;
    FileThreads _looks;
};

} // namespace velbrix
