#pragma once

#include "foundation/ProcessRunner.h"
#include "foundation/Published.h"
#include "maintenance/cleanup/CleanupTypes.h"
#include "maintenance/cleanup/LeftOutEntries.h"

#include <QCoroTask>
#include <QHash>
#include <QObject>

namespace velbrix {

class CleanupTable;
class Clock;
class DiskUsage;

using CleanupContentsById = QHash<QString, CleanupContents>;

// What is in the items the user has opened, and which entries of an item are
// left out of every clean. Everything it is given must outlive it.
class OpenedItems final : public QObject {
    Q_OBJECT
    VELB_PUBLISHED(OpenedItems, CleanupContentsById, contents) // of the opened ones

public:
    OpenedItems(const CleanupTable &table, DiskUsage &usage, SettingsStore &settings, Clock &clock);
    ~OpenedItems() override;

    // Whether cleaning the item takes entries that can be listed.
    bool canOpen(const QString &id) const;
    // Lists the entries, then measures them. Does nothing when it is open.
    void open(const QString &id);
    void close(const QString &id);
    // Lists and measures all opened ones anew.
    void lookAgain();
    // Leaves one entry out of every clean, or takes it in again; the item
    // need not be open.
    void setIncluded(const QString &id, const QByteArray &entryPath, bool isIncluded);
    qsizetype leftOutCount(const QString &id) const { return _leftOut.count(id); }
    // Of all items.
    QList<QByteArray> leftOut() const { return _leftOut.all(); }
    // Closes it and takes everything in again.
    void forget(const QString &id);

private:
    QCoro::Task<> measure(QString id);
    void publish(const QString &id, const CleanupContents &contents);

    const CleanupTable &_table;
    DiskUsage &_usage;
    Clock &_clock;
    LeftOutEntries _leftOut;
    QHash<QString, Cancellation> _openings;
};

} // namespace velbrix
