#pragma once

#include "foundation/Clock.h"
#include "foundation/Job.h"
#include "foundation/ProcessRunner.h"
#include "foundation/Published.h"
#include "maintenance/backup/ArchiveRestorer.h"
#include "maintenance/backup/ArchiveRetention.h"
#include "maintenance/backup/BackupChecks.h"
#include "maintenance/backup/BackupRun.h"
#include "maintenance/backup/BackupTask.h"
#include "platform/VolumeIdentity.h"

#include <QCoroTask>
#include <QList>
#include <QObject>
#include <QPromise>

#include <chrono>
#include <expected>
#include <functional>
#include <memory>
#include <optional>

namespace velbrix {

class Archiver;
class SettingsStore;
class SystemSleep;
class UserNotifications;
struct UserNotification;

// A run that waits for the user to agree.
struct BackupQuestion {
    QString taskId;
    QString name;
    BackupDoubt doubt;

    bool operator==(const BackupQuestion &) const = default;
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
    VELB_PUBLISHED(FileBackupController, QString, storageProblem) // stored tasks that could not be read

public:
    static constexpr std::chrono::seconds checkInterval{300};

    struct Ports {
        Archiver &archiver;
        UserNotifications &notifications;
        SystemSleep &sleep;
        VolumeIdentity volumes = {};
    };

    FileBackupController(Ports ports, SettingsStore &settings, Clock &clock, QObject *parent = nullptr);
    ~FileBackupController() override;

    // A task without an id is new; an empty name becomes the source folder's.
    // What a run writes (results, next time) is not taken from the task.
    using Saved = std::expected<BackupTask, BackupObstacle>;
    QCoro::Task<Saved> save(BackupTask task);
    // Never deletes files. A run of the task ends.
    void remove(const QString &id);
    void setEnabled(const QString &id, bool isEnabled);
    std::optional<BackupTask> task(const QString &id) const;

    // Works for a disabled task, too. Does nothing while another run goes on.
    void runNow(const QString &id);
    // Nothing is begun on a schedule any more. A scheduled run that is cancelled
    // from now on stays due, so that it is caught up with at the next start.
    void shutDown();
    // Ends the run; what was begun is taken back or stays as it was.
    void cancelRun();
    // The user's answer to the question.
    void confirm();
    void decline();

    // Complete archives under the task's names, newest first.
    QCoro::Task<QList<BackupArchiveInfo>> archives(QString id) const;
    ArchiveRestorer &restorer() { return _restorer; }
    const ArchiveRestorer &restorer() const { return _restorer; }
    // A run or a restore.
    Job &job() { return _job; }

Q_SIGNALS:
    // The task has its result.
    void runFinished(const QString &taskId);

private:
    Job::State jobState() const;
    void cancelAll();

    enum class Occasion { onRequest, onSchedule };

    void correctTimes();
    void poll();
    void pollAfter(std::chrono::milliseconds delay);
    void observeWaking();
    QCoro::Task<> runDue();
    QCoro::Task<> run(BackupTask task, Occasion occasion);
    void finish(const BackupTask &asRun, const BackupOutcome &outcome, Occasion occasion);
    void notify(const std::optional<UserNotification> &notification);
    QCoro::Task<bool> ask(BackupQuestion question);
    void answer(bool isYes);
    void abandonQuestion();
    void stopWaiting(bool isYes);
    // Of killed runs, where no task writes any more.
    void cleanUp(const QString &folder);
    // Stored at once. Does nothing when there is no such task.
    void change(const QString &id, const std::function<void(BackupTask &)> &edit);
    void store(const QList<BackupTask> &tasks);

    Ports _ports;
    SettingsStore &_settings;
    Clock &_clock;
    BackupTaskStore _store;
    std::unique_ptr<Alarm> _pollTimer;
    std::unique_ptr<Alarm> _catchUp;
    Observation _waking; // while there are tasks
    bool _isPolling = false;
    bool _isShutDown = false;
    Cancellation _runCancellation;
    std::shared_ptr<QPromise<bool>> _answer; // while a run waits for one
    std::chrono::milliseconds _askedAt{0};
    ArchiveRestorer _restorer;
    Job _job{[this] { return jobState(); }, [this] { cancelAll(); }};
};

} // namespace velbrix
