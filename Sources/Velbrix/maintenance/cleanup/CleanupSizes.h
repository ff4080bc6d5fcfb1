#pragma once

#include "foundation/ProcessRunner.h"
#include "maintenance/cleanup/CleanupCatalog.h"

#include <QByteArray>
#include <QCoroTask>
#include <QHash>
#include <QList>
#include <QObject>
#include <QSet>
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

    // Ends when all are told, or soon after the cancelling. The entries that
    // stay for one of these places are measured, too.
    QCoro::Task<> measure(QStringList ids, QList<QByteArray> staying, Cancellation work);
    // Nothing while unknown or not measurable.
    std::optional<qint64> bytes(const QString &id) const;
    bool isKnown(const QString &id) const { return _known.contains(id); }
    // What goes of these together: a folder inside another one counts once, and
    // not the entries that stay for one of these places. Places are canonical.
    qint64 going(const QStringList &ids, const QList<QByteArray> &staying) const;
    // The folders that make up the item's size, canonical.
    QList<QByteArray> folders(const QString &id) const;
    // Somebody else has measured this.
    void learn(const QByteArray &path, qint64 bytes) { _bytesOfPlaces[path] = bytes; }
    void forget(const QString &id);

Q_SIGNALS:
    // 0 when there is nothing to measure.
    void measured(const QString &id, qint64 bytes);

private:
    // One of the folders of an item.
    struct Folder {
        QByteArray path;
        bool isEmpty = false;
        QList<QByteArray> staying; // entries that stay always: hidden, or spared
    };
    struct Wanted {
        CleanupRule rule;
        QStringList trash; // its folders, of that item
    };
    static QList<Folder> lookUp(const Wanted &wanted);
    static QList<QList<Folder>> lookUpAll(const QList<Wanted> &wanted);
    QList<QByteArray> alwaysStaying(const QStringList &ids) const;
    void set(const QString &id, qint64 bytes);

    const CleanupTable &_table;
    DiskUsage &_usage;
    QHash<QString, qint64> _bytes;
    QSet<QString> _known; // ids, measurable or not
    QHash<QString, QList<Folder>> _folders;
    QHash<QByteArray, qint64> _bytesOfPlaces; // folders and entries
};

} // namespace velbrix
