#pragma once

#include "foundation/Clock.h"
#include "foundation/ProcessRunner.h"
#include "foundation/Published.h"
#include "maintenance/uninstall/UninstallTypes.h"

#include <QCoroTask>
#include <QObject>

namespace velbrix {

class DiskUsage;
class RunningPrograms;
class SettingsStore;
class TrashCan;
class UninstallJournal;

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
    VELB_PUBLISHED(AppScanner, double, progressValue, 0)  // 0…1
    VELB_PUBLISHED(AppScanner, QString, scanProblem)      // why there is no list
    VELB_PUBLISHED(AppScanner, QString, uninstallingName) // of the application under way, else empty
    VELB_PUBLISHED(AppScanner, bool, isReviewing, false)  // a review is being prepared
    VELB_PUBLISHED(AppScanner, std::optional<UninstallReview>, review) // open for the user's ticks
    VELB_PUBLISHED(AppScanner, QList<UninstallRecord>, records)        // the last uninstalls, newest first
    VELB_PUBLISHED(AppScanner, QList<FailedItem>, failures) // of the last uninstall or putting back

public:
    struct Hosts {
        ApplicationCatalog &catalog;
        DiskUsage &usage;
        TrashCan &trash;
        RunningPrograms &programs;
    };

    // The journal's file is made with the first uninstall.
    AppScanner(Hosts hosts, SettingsStore &settings, Clock &clock, const QString &journalFile,
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

    // Looks for what belongs to the application and publishes it as the
    // review, with the mode that is set or another for this once. The command
    // line asks the same and gets the answer, without opening it.
    void prepareReview(const AppInfo &app);
    QCoro::Task<UninstallReview> reviewOf(AppInfo app, UninstallMode mode);
    void setTicked(const QString &path, bool isTicked);
    void cancelReview();

    // Takes away what is ticked. Asks nothing: consent and confirmation come
    // before. Does nothing while another uninstall runs.
    void uninstall(const UninstallReview &review);
    // Stops before the next item; what has gone stays in the trash.
    void cancelUninstall();

    void putBack(const QString &recordId);
    bool isPuttingBack() const { return _isPuttingBack; }

Q_SIGNALS:
    // An uninstall or a putting back has ended; `message` is for the user.
    void finished(const QString &message);

private:
    QCoro::Task<> runScan();
    QCoro::Task<> runUninstall(UninstallReview review);
    QCoro::Task<> runPutBack(QString recordId);

    Hosts _hosts;
    SettingsStore &_settings;
    Clock &_clock;
    std::unique_ptr<UninstallJournal> _journal;
    bool _hasScanned = false;
    bool _isPuttingBack = false;
};

} // namespace velbrix
