#pragma once

#include "foundation/ProcessRunner.h"
#include "foundation/Published.h"
#include "maintenance/cleanup/CleanupTypes.h"

#include <QCoroTask>
#include <QHash>
#include <QObject>

#include <functional>

namespace velbrix {

class CleanupChoices;
class CleanupTable;
class Clock;
class DiskUsage;
struct CleanupBounds;
struct CleanupRule;

using CleanupContentsById = QHash<QString, CleanupContents>;

// What is in the items: in those that the user has opened, and in any when it is
// asked for. Excluded entries are told also while they are missing: the user
// alone ends an exclusion. Everything it is given must outlive it.
class CleanupDetails final : public QObject {
    Q_OBJECT
    VELB_PUBLISHED(CleanupDetails, CleanupContentsById, contents) // of the opened ones

public:
    // Those of the item's cleaning at that moment, together with these items; with
    // the selected ones when none are named.
    using Bounds = std::function<QCoro::Task<CleanupBounds>(const CleanupRule &rule, const QStringList &ids)>;

    CleanupDetails(const CleanupTable &table, CleanupChoices &choices, Bounds bounds, DiskUsage &usage,
                   Clock &clock);
    ~CleanupDetails() override;

    // Whether cleaning the item takes entries that can be listed.
    bool canOpen(const QString &id) const;
    // Lists the entries, then measures them. Does nothing when it is open.
    void open(const QString &id);
    void close(const QString &id);
    // Lists and measures all opened ones anew; what they told stays until then.
    void lookAgain();
    // The same of one item that is cleaned with these, open or not, without
    // showing it.
    QCoro::Task<CleanupContents> look(QString id, QStringList ids);
    // Excludes one entry from every clean, or takes it in again; the item need
    // not be open.
    void setIncluded(const QString &id, const QByteArray &entryPath, bool isIncluded);

private:
    QCoro::Task<CleanupContents> list(QString id, QStringList ids);
    QCoro::Task<> measure(QString id);
    void publish(const QString &id, const CleanupContents &contents);

    const CleanupTable &_table;
    CleanupChoices &_choices;
    const Bounds _bounds;
    DiskUsage &_usage;
    Clock &_clock;
    QHash<QString, Cancellation> _openings;
};

} // namespace velbrix
