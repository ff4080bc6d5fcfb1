#pragma once

#include "foundation/Clock.h"
#include "foundation/Job.h"
#include "foundation/ProcessRunner.h"
#include "foundation/Published.h"
#include "foundation/Result.h"
#include "maintenance/cleanup/CleanupChoices.h"
#include "maintenance/cleanup/CleanupDetails.h"
#include "maintenance/cleanup/CleanupSizes.h"
#include "maintenance/cleanup/CleanupTable.h"
#include "maintenance/cleanup/CleanupTypes.h"
#include "maintenance/cleanup/ItemCleaner.h"
#include "maintenance/cleanup/SeenTime.h"

#include <QCoroTask>
#include <QObject>
#include <QSet>

#include <functional>

namespace velbrix {

class AdminShell;
class DiskUsage;
class RunningPrograms;
class SettingsStore;
class TrashCan;

// Caches, logs, trash and folders of the user's choice: how large they are,
// and emptying those that are selected.
class SystemCleaner final : public QObject {
    Q_OBJECT
    VELB_PUBLISHED(SystemCleaner, QList<CleanupItem>, items)
    VELB_PUBLISHED(SystemCleaner, CleanupPhase, phase)
    VELB_PUBLISHED(SystemCleaner, double, progress, 0)    // 0…1
    VELB_PUBLISHED(SystemCleaner, CleanupReport, report)  // of the last clean
    VELB_PUBLISHED(SystemCleaner, QStringList, busyItems) // ids whose owner runs; asked anew with the sizes
    VELB_PUBLISHED(SystemCleaner, QSet<QString>, forcedItems) // busy ones to be cleaned all the same

public:
    static constexpr int maxCustomPathsAllowed = 10;

    struct Ports {
        DiskUsage &usage;
        TrashCan &trash;
        AdminShell &admin;
        RunningPrograms &programs;
    };

    // Everything must outlive the cleaner. `ownPaths`: what of this program
    // must never be removed.
    SystemCleaner(const Ports &ports, SettingsStore &settings, Clock &clock, QList<CleanupRule> catalog,
                  QList<QByteArray> ownPaths, QObject *parent = nullptr);
    ~SystemCleaner() override;

    CleanupGroup group(const QString &id) const;
    bool isAdministrative(const QString &id) const;
    // Bytes as last measured; nothing while unknown or not measurable.
    std::optional<qint64> measuredBytes(const QString &id) const { return _sizes.bytes(id); }
    // It was measured and there is nothing in it.
    bool isEmpty(const QString &id) const;
    // What would go of all that clean() would take, a folder inside another one
    // counted once.
    qint64 selectedBytes() const;
    // Of one item as it is among them.
    qint64 bytesToGo(const QString &id) const;

    void setSelected(const QString &id, bool isSelected);
    void setAllSelected(bool isSelected);
    // A busy item is skipped unless it is forced; for this session only.
    void setForced(const QString &id, bool isForced);

    // The failure is for the user.
    QCoro::Task<Result<void>> addCustomPath(QString path);
    void removeCustomPath(const QString &id);

    // Does nothing while sizes are measured or items cleaned.
    void recalculate();
    // The first showing of the page; later ones do nothing.
    void calculateOnce();

    CleanupDetails &details() { return _details; }
    const CleanupDetails &details() const { return _details; }
    // Entries of the item that every clean excludes.
    qsizetype excludedCount(const QString &id) const { return _choices.excludedOf(id).size(); }

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
    // The same of single folders of the items that it takes.
    QStringList foldersToSkip(const QStringList &ids = {}) const;
    // Why it would do nothing, for the user; else empty.
    QString obstacle(const QStringList &ids = {}) const;
    bool isCleaning() const { return _isCleaning; }
    // Cleaning or measuring.
    bool isWorking() const;
    Job &job() { return _job; }

private:
    Job::State jobState() const;
    bool isSkipped(const CleanupItem &item) const;
    QCoro::Task<> lookForUse();
    QCoro::Task<CleanupBounds> bounds(CleanupRule rule, QStringList ids) const;
    bool liesInOpened(const QString &id) const;
    // Canonical places that stay when these are cleaned.
    QList<QByteArray> stayingPlaces(const QStringList &ids) const;
    void change(const QString &id, const std::function<void(CleanupItem &)> &edit);
    void showSize(const QString &id, qint64 bytes);

    QCoro::Task<> measure(QStringList ids, Cancellation work);
    QCoro::Task<> calculate();
    QCoro::Task<> runClean(QStringList wanted);
    QCoro::Task<> cleanItems(QList<CleanupItem> items, CleanupReport report, Cancellation work);
    QCoro::Task<Cleaned> cleanItem(CleanupItem item, QStringList ids, Cancellation work);

    Clock &_clock;
    CleanupChoices _choices;
    const SeenTime _seen;
    CleanupTable _table;
    CleanupUse _use;
    CleanupSizes _sizes;
    CleanupDetails _details;
    ItemCleaner _itemCleaner;
    Cancellation _work;
    Job _job{[this] { return jobState(); }, [this] { cancel(); }};
    quint64 _measurings = 0; // of all items, so far
    QSet<QString> _sized;    // ids of the items whose size is shown
    bool _isCleaning = false;
    bool _hasCalculated = false;
};

} // namespace velbrix
