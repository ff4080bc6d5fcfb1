#pragma once

#include "foundation/Clock.h"
#include "foundation/ProcessRunner.h"
#include "foundation/Published.h"
#include "foundation/Removal.h"
#include "foundation/Result.h"
#include "maintenance/cleanup/CleanupCatalog.h"
#include "maintenance/cleanup/CleanupTypes.h"
#include "maintenance/cleanup/LeftOutEntries.h"

#include <QCoroTask>
#include <QHash>
#include <QObject>
#include <QSet>

#include <atomic>
#include <memory>

namespace velbrix {

class AdminShell;
class DiskUsage;
class RunningPrograms;
class SettingsStore;
class TrashCan;

using CleanupContentsById = QHash<QString, CleanupContents>;

// Caches, logs, trash and folders of the user's choice: how large they are,
// and emptying those that are selected.
class SystemCleaner final : public QObject {
    Q_OBJECT
    VELB_PUBLISHED(SystemCleaner, QList<CleanupItem>, items)
    VELB_PUBLISHED(SystemCleaner, CleanupPhase, phase)
    VELB_PUBLISHED(SystemCleaner, double, progress, 0)           // 0…1
    VELB_PUBLISHED(SystemCleaner, CleanupContentsById, contents) // of the opened rows
    VELB_PUBLISHED(SystemCleaner, CleanupReport, report)         // of the last clean
    VELB_PUBLISHED(SystemCleaner, QStringList, busyItems) // ids whose owner runs; asked anew with the sizes
    VELB_PUBLISHED(SystemCleaner, QSet<QString>, forcedItems) // busy ones to be cleaned all the same

public:
    static constexpr int maxCustomPathsAllowed = 10;
    static inline const QString defaultsKey = QStringLiteral("VelbClean_CleanupSelection");
    static inline const QString customPathsKey = QStringLiteral("VelbClean_CustomPaths");

    struct Hosts {
        DiskUsage &usage;
        TrashCan &trash;
        AdminShell &admin;
        RunningPrograms &programs;
    };

    // Everything must outlive the cleaner. `ownPlaces`: what of this program
    // must never be removed.
    SystemCleaner(const Hosts &hosts, SettingsStore &settings, Clock &clock, QList<CleanupRule> catalog,
                  QList<QByteArray> ownPlaces, QObject *parent = nullptr);
    ~SystemCleaner() override;

    CleanupGroup group(const QString &id) const;
    bool isAdministrative(const QString &id) const;
    // Whether the row has entries to open.
    bool hasContents(const QString &id) const;
    // Bytes as last measured; nothing while unknown or not measurable.
    std::optional<qint64> measuredBytes(const QString &id) const;
    // Of what is selected; a folder inside another one counts once.
    qint64 selectedBytes() const;

    void setSelected(const QString &id, bool isSelected);
    void setAllSelected(bool isSelected);
    // A busy item is skipped unless it is forced; for this session only.
    void setForced(const QString &id, bool isForced);

    // The failure is for the user.
    Result<void> addCustomPath(const QString &path);
    void removeCustomPath(const QString &id);

    // Does nothing while sizes are measured or items cleaned.
    void recalculate();
    // The first showing of the page; later ones do nothing.
    void calculateOnce();

    void open(const QString &id);
    void close(const QString &id);
    // Leaves one entry of an opened row out of every clean, or takes it in again.
    void setIncluded(const QString &id, const QByteArray &entryPath, bool isIncluded);
    // Entries left out; those of a closed row, too.
    qsizetype leftOutCount(const QString &id) const { return _leftOut.count(id); }

    // Ends the measuring, or the cleaning after the entry it is at.
    void cancel();
    // These items, or the selected ones when none are named. Asks nothing:
    // confirmation and consent come before. Does nothing while items are
    // cleaned; a measuring under way is ended.
    void clean(const QStringList &ids = {});
    // What clean() would take now, in its order.
    QList<CleanupItem> itemsToClean(const QStringList &ids = {}) const;
    // Names of the items that it would leave alone because their owner runs.
    QStringList itemsToSkip(const QStringList &ids = {}) const;
    // Why it would do nothing, for the user; else empty.
    QString obstacle(const QStringList &ids = {}) const;
    bool isCleaning() const { return _isCleaning; }
    // Cleaning or measuring.
    bool isWorking() const;

private:
    struct Act; // what one item's cleaning did

    const CleanupRule *rule(const QString &id) const;
    CleanupTarget target(const CleanupItem &item) const;
    QStringList emptiedFolders(const QString &id) const;
    QStringList measuredFolders(const QString &id) const;
    QStringList foldersOfOthers(const QString &id, const QSet<QString> &cleaned) const;
    bool isSkipped(const CleanupItem &item) const;
    const CleanupItem *item(const QString &id) const;
    RemovalRules removalRules(const QString &id) const;

    void load();
    void saveSelection();
    void saveCustomPaths();
    void change(const QString &id, const std::function<void(CleanupItem &)> &edit);
    void setSize(const QString &id, qint64 bytes);
    void refreshBusyItems();

    QCoro::Task<> estimate(QStringList ids, Cancellation work);
    QCoro::Task<> calculate();
    QCoro::Task<> measureContents(QString id);
    void publishContents(const QString &id, const CleanupContents &contents);

    QCoro::Task<> runClean(QStringList ids);
    QCoro::Task<Act> cleanItem(CleanupItem item, QSet<QString> cleaned);
    QCoro::Task<Act> emptyFolders(QString id, QSet<QString> cleaned);

    Hosts _hosts;
    SettingsStore &_settings;
    Clock &_clock;
    ProcessRunner _processes;
    QList<CleanupRule> _catalog;
    QList<QByteArray> _ownPlaces;
    QHash<QString, qint64> _bytes;
    LeftOutEntries _leftOut;
    QHash<QString, Cancellation> _openings;
    Cancellation _work;
    std::shared_ptr<std::atomic_bool> _stopRemoval;
    quint64 _measurings = 0; // of all items, so far
    bool _isCleaning = false;
    bool _hasCalculated = false;
};

} // namespace velbrix
