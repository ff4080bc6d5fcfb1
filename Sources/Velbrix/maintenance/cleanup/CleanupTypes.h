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

// An entry of an opened row. It goes when the item is cleaned, unless the user
// has excluded it or something else keeps it.
struct CleanupEntry {
    QByteArray path;             // native
    QString name;                // as shown
    std::optional<qint64> bytes; // nothing while it is being measured
    bool isIncluded = true;      // not excluded
    QString whyStays = {};       // what else keeps it; mostly empty
    bool isFixed = false;        // cannot be excluded

    bool goes() const { return isIncluded && whyStays.isEmpty(); }

    bool operator==(const CleanupEntry &) const = default;
};

// An opened row.
struct CleanupContents {
    bool isMeasuring = false;
    QString problem;             // why it cannot be listed
    QString note;                // what is there and not listed
    QList<CleanupEntry> entries; // the largest first once measured

    bool operator==(const CleanupContents &) const = default;
};

// An item or a place, and what there is to say of it.
struct CleanupNote {
    QString what;
    QString why;

    bool operator==(const CleanupNote &) const = default;
};

// The last clean: its end, which the phase soon leaves behind, and what it
// really did.
struct CleanupReport {
    CleanupPhase outcome; // done or failed; idle when there was none
    RemovalReport removal;
    bool wasCancelled = false;
    QStringList skipped;       // what was left alone because its owner runs, by name
    QList<CleanupNote> failed; // items whose command or trash did not do it; the outcome counts them
    QList<CleanupNote> kept;   // entries that stayed whole for something in them
    QStringList unmeasured;    // names of items that nobody knows the freed bytes of

    // Of what was to go; those that failed left out.
    qint64 handledCount() const { return outcome.cleanedCount - failed.size(); }

    bool operator==(const CleanupReport &) const = default;
};

// The line that says how the clean ended; empty when there was none.
QString resultText(const CleanupReport &report);
// What was really freed, what failed, was left alone and not begun; one
// statement each.
QStringList reportLines(const CleanupReport &report);

} // namespace velbrix
