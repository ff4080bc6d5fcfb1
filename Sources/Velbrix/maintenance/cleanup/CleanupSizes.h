#pragma once

#include "foundation/ProcessRunner.h"

#include <QCoroTask>
#include <QHash>
#include <QObject>
#include <QString>
#include <QStringList>

#include <optional>

namespace velbrix {

class CleanupTable;
class DiskUsage;

// How large the items are, as last measured. Table and usage must outlive it.
class CleanupSizes final : public QObject {
    Q_OBJECT

public:
    CleanupSizes(const CleanupTable &table, DiskUsage &usage) : _table(table), _usage(usage) {}

    // Ends when all are told, or soon after the cancelling.
    QCoro::Task<> measure(QStringList ids, Cancellation work);
    // Nothing while unknown or not measurable.
    std::optional<qint64> bytes(const QString &id) const;
    // Of these together; a folder inside another one counts once.
    qint64 total(const QStringList &ids) const;
    void forget(const QString &id) { _bytes.remove(id); }

Q_SIGNALS:
    // 0 when there is nothing to measure.
    void measured(const QString &id, qint64 bytes);

private:
    void set(const QString &id, qint64 bytes);

    const CleanupTable &_table;
    DiskUsage &_usage;
    QHash<QString, qint64> _bytes;
};

} // namespace velbrix
