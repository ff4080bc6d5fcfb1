#pragma once

#include "foundation/Removal.h"

#include <QByteArray>
#include <QList>
#include <QString>
#include <QStringList>

#include <optional>

namespace velbrix {

// One row of the cleaner.
struct CleanupItem {
    QString id;
    QString name;
    QString icon; // SF Symbol name
    QString description;
    bool isSelected = false; // takes part in the next clean
    QString estimatedSize;   // as shown
    std::optional<QString> customPath;

    bool operator==(const CleanupItem &) const = default;
};

struct CleanupPhase {
    enum class Kind { cleaning, done, failed, idle, calculating };

    Kind kind = Kind::idle;
    QString text;            // the item being cleaned, or the failure
    qint64 cleanedCount = 0; // of done
    qint64 totalBytes = 0;   // of done

    static CleanupPhase cleaning(const QString &item) { return {Kind::cleaning, item, 0, 0}; }
    static CleanupPhase calculating() { return {Kind::calculating, {}, 0, 0}; }
    static CleanupPhase failed(const QString &message) { return {Kind::failed, message, 0, 0}; }
    static CleanupPhase done(qint64 count, qint64 bytes) { return {Kind::done, {}, count, bytes}; }

    bool operator==(const CleanupPhase &) const = default;
};

// What cleaning an item does: it empties the folder, or runs the command.
struct CleanupTarget {
    QString id;
    QString name;
    std::optional<QString> path;
    std::optional<QString> command; // a shell line
    bool requiresAdmin = false;

    bool operator==(const CleanupTarget &) const = default;
};

// An entry of an opened row.
struct CleanupEntry {
    QByteArray path;             // native
    QString name;                // as shown
    std::optional<qint64> bytes; // nothing while it is being measured
    bool isIncluded = true;      // goes when the item is cleaned

    bool operator==(const CleanupEntry &) const = default;
};

// An opened row.
struct CleanupContents {
    bool isMeasuring = false;
    QString problem;             // why it cannot be listed
    QList<CleanupEntry> entries; // what cleaning would take; the largest first once measured

    bool operator==(const CleanupContents &) const = default;
};

// The last clean: its end, which the phase soon leaves behind, and what it
// really did.
struct CleanupReport {
    CleanupPhase outcome; // done or failed; idle when there was none
    RemovalReport removal;
    bool wasCancelled = false;
    QStringList skipped; // names of items that were left alone because their owner runs

    bool operator==(const CleanupReport &) const = default;
};

// The line that says how the clean ended; empty when there was none.
QString resultText(const CleanupReport &report);

} // namespace velbrix
