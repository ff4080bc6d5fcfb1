#pragma once

#include "maintenance/uninstall/UninstallTypes.h"

#include <QList>
#include <QString>
#include <QStringList>

#include <optional>

namespace velbrix {

// Whose data is looked for.
struct DataSubject {
    QString name;
    QString identifier;
    QStringList others; // the identifiers of all other installed applications
    OwnIdentity own;    // this program, whose data is never found
};

struct DataMatch {
    MatchReason reason = MatchReason::name;
    QString why;
    QString caution; // why it is not certain enough to be ticked; else empty

    bool operator==(const DataMatch &) const = default;
};

// Tells by its name whether an entry of a library folder belongs to an
// application. Broad in what it finds, strict in what it holds for certain.
// Case makes no difference, nor does the composition of letters.
class DataMatcher {
public:
    explicit DataMatcher(const DataSubject &subject);

    // `leadsElsewhere`: the entry is a link to something outside its folder.
    std::optional<DataMatch> match(const QString &entry, bool leadsElsewhere) const;

private:
    std::optional<DataMatch> find(const QString &entry) const;
    QString caution(const QString &entry, MatchReason reason) const;
    // Another application whose identifier the entry bears; else empty.
    QString otherOwner(const QString &entry) const;
    bool isExactly(const QString &entry) const;
    bool hasWholeIdentifier(const QString &entry) const;

    QString _name;
    QString _identifier;
    QStringList _others;
    QStringList _own;
};

} // namespace velbrix
