#pragma once

#include "foundation/ProcessRunner.h"
#include "foundation/Published.h"
#include "maintenance/cleanup/CleanupTypes.h"

#include <QCoroTask>
#include <QHash>
#include <QObject>

namespace velbrix {

class CleanupChoices;
class CleanupTable;
class Clock;
class DiskUsage;

using CleanupContentsById = QHash<QString, CleanupContents>;

// The details of the items the user has opened: what is in them. Everything it
// is given must outlive it.
class CleanupDetails final : public QObject {
    Q_OBJECT
    VELB_PUBLISHED(CleanupDetails, CleanupContentsById, contents) // of the opened ones

public:
    CleanupDetails(const CleanupTable &table, CleanupChoices &choices, DiskUsage &usage, Clock &clock);
    ~CleanupDetails() override;

    // Whether cleaning the item takes entries that can be listed.
    bool canOpen(const QString &id) const;
    // Lists the entries, then measures them. Does nothing when it is open.
    void open(const QString &id);
    void close(const QString &id);
    // Lists and measures all opened ones anew.
    void lookAgain();
    // Excludes one entry from every clean, or takes it in again; the item need
    // not be open.
    void setIncluded(const QString &id, const QByteArray &entryPath, bool isIncluded);

private:
    QCoro::Task<> measure(QString id);
    void publish(const QString &id, const CleanupContents &contents);

    const CleanupTable &_table;
    CleanupChoices &_choices;
    DiskUsage &_usage;
    Clock &_clock;
    QHash<QString, Cancellation> _openings;
};

} // namespace velbrix
