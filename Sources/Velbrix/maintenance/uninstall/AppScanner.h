#pragma once

#include "foundation/Clock.h"
#include "foundation/Job.h"
#include "foundation/ProcessRunner.h"
#include "foundation/Published.h"
#include "maintenance/uninstall/OpenReview.h"
#include "maintenance/uninstall/RecordedTrash.h"
#include "maintenance/uninstall/UninstallJournal.h"
#include "maintenance/uninstall/UninstallSequence.h"
#include "maintenance/uninstall/UninstallTypes.h"

#include <QCoroTask>
#include <QObject>

namespace velbrix {

class DiskUsage;
class RunningPrograms;
class SettingsStore;
class TrashCan;

// Installed applications, and taking one of them away with the data that
// belongs to it. What goes is settled in a review first; everything goes to
// the trash and can be put back.
class AppScanner final : public QObject {
    Q_OBJECT
    VELB_PUBLISHED(AppScanner, QList<AppInfo>, apps)
    VELB_PUBLISHED(AppScanner, bool, isScanning, false)
    VELB_PUBLISHED(AppScanner, bool, isUninstalling, false)
    VELB_PUBLISHED(AppScanner, QString, searchText)
    VELB_PUBLISHED(AppScanner, UninstallMode, uninstallMode, UninstallMode::full)
    VELB_PUBLISHED(AppScanner, CleanupOptions, cleanupOptions)
    VELB_PUBLISHED(AppScanner, UninstallStage, progressStage)
    VELB_PUBLISHED(AppScanner, double, progressValue, 0)        // 0…1
    VELB_PUBLISHED(AppScanner, QString, scanProblem)            // why there is no list
    VELB_PUBLISHED(AppScanner, QString, uninstallingName)       // of the application under way, else empty
    VELB_PUBLISHED(AppScanner, QList<UninstallRecord>, records) // the last uninstalls, newest first
    VELB_PUBLISHED(AppScanner, QString, recordsProblem)         // why some are missing or none can be made
    VELB_PUBLISHED(AppScanner, QList<FailedItem>, failures)     // of the last uninstall or putting back
    VELB_PUBLISHED(AppScanner, bool, isPuttingBack, false)

public:
    struct Ports {
        ApplicationCatalog &catalog;
        DiskUsage &usage;
        TrashCan &trash;
        RunningPrograms &programs;
    };

    // All must outlive the scanner. The journal's file is made with the first
    // uninstall; what lies beside it is this program's own and never taken. It
    // is read soon after.
    AppScanner(Ports ports, SettingsStore &settings, Clock &clock, const QString &journalFile,
               QObject *parent = nullptr);
    ~AppScanner() override;

    void scan();
    // The first showing of the page; later ones do nothing.
    void scanOnce();
    QList<AppInfo> filteredApps() const;
    void setSearchText(const QString &text);

    void setUninstallMode(UninstallMode mode);
    void setCleanupOptions(const CleanupOptions &options);
    // The kinds of data this host has folders for, in order.
    QList<LibraryKind> libraryKinds() const;

    // Opens the review of the application in the mode that is set. Does nothing
    // while something is uninstalled.
    void prepareReview(const AppInfo &app);
    // Closed by the next uninstall.
    OpenReview &openReview() { return _openReview; }
    const OpenReview &openReview() const { return _openReview; }
    // A review with all sizes that is not opened, for the command line.
    QCoro::Task<UninstallReview> reviewOf(AppInfo app, UninstallMode mode);

    // Takes away what is ticked, and closes the open review. Asks nothing: consent
    // and confirmation come before. Does nothing while another uninstall runs
    // or something is put back.
    void uninstall(UninstallReview review);
    // Stops before the next item; what has gone stays in the trash.
    void cancelUninstall();
    // From the call of uninstall() to its finished().
    bool isBusy() const { return _isBusy; }
    // Uninstalling or putting back.
    Job &job() { return _job; }

    // Back to where it was, the last one first; what cannot go back stays in
    // the record and is told in `failures`. Packages never can.
    void putBack(const QString &recordId);
    // Drops the record; the trash stays as it is. Does nothing while another
    // uninstall runs or something is put back. A record that stays on the disk
    // is told in `failures` and by finished().
    void forget(const QString &recordId);

Q_SIGNALS:
    // An uninstall or a putting back has ended; `message` is for the user.
    void finished(const QString &message);

private:
    Job::State jobState() const;
    QCoro::Task<> readRecords();
    QCoro::Task<> runScan(Cancellation scan);
    QCoro::Task<> runUninstall(UninstallReview review);
    QCoro::Task<> runPutBack(UninstallRecord record);

    UninstallPlan planFor(const AppInfo &app, UninstallMode mode) const;
    void observeSequence();

    Ports _ports;
    SettingsStore &_settings;
    Clock &_clock;
    const QString _ownFolder;
    OpenReview _openReview;
    UninstallJournal _journal;
    RecordedTrash _trash;
    UninstallSequence _sequence;
    Cancellation _scanning;
    Cancellation _uninstalling;
    QList<InstalledApplication> _unlisted; // what is installed besides the rows
    quint64 _nextId = 1;
    bool _hasScanned = false;
    bool _isBusy = false;
    Job _job{[this] { return jobState(); }, [this] { cancelUninstall(); }};
};

} // namespace velbrix
