#pragma once

#include "foundation/FolderHandle.h"
#include "foundation/Removal.h"

#include <QString>

#include <map>
#include <optional>
#include <set>

namespace velbrix {

// Tells what must stay. Protected places are known by their paths and by what
// they are, so that no other name leads into one.
class RemovalGuard {
public:
    explicit RemovalGuard(RemovalRules rules);

    // Why this folder cannot be a root; else empty.
    QString rootObstacle(const QByteArray &canonicalPath, const struct stat &facts) const;
    // Why an entry or what it contains must stay; else empty.
    QString entryObstacle(const QByteArray &path, const struct stat &facts) const;
    // Whether it is somebody else's or young; never so without a minimum age.
    bool isOthers(const struct stat &facts) const;
    bool isYoung(const struct stat &facts) const;
    bool hasMinimumAge() const { return _rules.minimumAge.has_value(); }

private:
    bool isBound(const QByteArray &path, const struct stat &facts) const;

    RemovalRules _rules;
    QList<QByteArray> _paths; // of both kinds
    QList<QByteArray> _sealed;
    std::set<FileIdentity> _identities;
    std::set<FileIdentity> _sealedIdentities;
    std::set<FileIdentity> _containing; // the folders above the places
    std::set<FileIdentity> _boundIdentities;
    QSet<QByteArray> _boundNames; // of sockets bound by a relative path
};

// The words for an errno of the acts above.
QString removalReason(int error);

} // namespace velbrix
