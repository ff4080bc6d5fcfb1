#pragma once

#include "foundation/Clock.h"
#include "foundation/ProcessRunner.h"
#include "foundation/Published.h"
#include "foundation/Result.h"
#include "maintenance/backup/BackupTypes.h"

#include <QCoroTask>
#include <QList>
#include <QObject>

#include <memory>
#include <optional>

namespace velbrix {

class Archiver;
class SettingsStore;
class UserNotifications;

// A sync that would delete so much that the user is asked first.
struct BackupQuestion {
    QString taskId;
    QString name;
    qint64 deletions = 0; // files the mirror would lose
    qint64 existing = 0;  // files the mirror has

    bool operator==(const BackupQuestion &) const = default;
};

struct BackupArchiveInfo {
    QString path;
    QDateTime at;
    qint64 bytes = 0;

    bool operator==(const BackupArchiveInfo &) const = default;
};

// Scheduled archives and mirrors of folders.
class FileBackupController final : public QObject {
    Q_OBJECT
    VELB_PUBLISHED(FileBackupController, QList<BackupTask>, tasks)
    VELB_PUBLISHED(FileBackupController, bool, isRunningBackup, false)
    VELB_PUBLISHED(FileBackupController, std::optional<QString>, currentRunningTaskID)
    VELB_PUBLISHED(FileBackupController, QString, runningProgress) // the progress line
    VELB_PUBLISHED(FileBackupController, double, runningShare, -1) // 0…1, below 0 while nobody knows
    VELB_PUBLISHED(FileBackupController, std::optional<BackupQuestion>, question) // open for the user
    VELB_PUBLISHED(FileBackupController, bool, isRestoring, false)
    VELB_PUBLISHED(FileBackupController, QString, restoreResult)  // of the last restore
    VELB_PUBLISHED(FileBackupController, QString, storageProblem) // stored tasks that could not be read

public:
    static constexpr std::chrono::seconds checkInterval{300};

    struct Hosts {
        Archiver &archiver;
        UserNotifications &notifications;
    };

    FileBackupController(Hosts hosts, SettingsStore &settings, Clock &clock, QObject *parent = nullptr);
    ~FileBackupController() override;

    // The failure is for the user. A task without an id is new; an empty name
    // becomes the source folder's.
    Result<BackupTask> save(BackupTask task);
    void remove(const QString &id);
    void setEnabled(const QString &id, bool isEnabled);
    std::optional<BackupTask> task(const QString &id) const;

    // Works for a disabled task, too. Does nothing while another run goes on.
    void runNow(const QString &id);
    // Ends the run; what was begun is taken back or stays as it was.
    void cancelRun();
    // The user's answer to the question.
    void confirmDeletions();
    void declineDeletions();

    // Complete archives of the task, newest first.
    QList<BackupArchiveInfo> archives(const QString &id) const;
    // Into a new folder inside the chosen one; nothing is replaced.
    void restore(const QString &archive, const QString &intoFolder);
    void cancelRestore();

Q_SIGNALS:
    void runFinished(const QString &taskId);
};

} // namespace velbrix
