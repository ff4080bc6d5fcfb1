#pragma once

#include "foundation/Cancellation.h"

#include <QByteArray>
#include <QList>
#include <QSet>
#include <QString>

#include <chrono>
#include <functional>
#include <memory>
#include <optional>

namespace velbrix {

// The one gate through which files are deleted for good. Whatever is removed
// lies inside a root that was named; on the way down no link is followed and
// no mount crossed, even when somebody exchanges folders meanwhile; protected
// places and what contains them stay, and so do sockets in use. Paths are
// native bytes, absolute. Blocking: call it off the main thread.

struct RemovalRules {
    // Neither removed nor entered for removal, nor is anything that contains
    // them; none of them can be a root, what lies in them can. Canonical.
    QList<QByteArray> protectedPaths;
    // The same with everything in them: nothing in one can be a root either.
    // The system's own folders (/usr, /etc, /System …) always count as such.
    QList<QByteArray> sealedPaths;
    // Sockets somebody listens on; when unknown every socket counts.
    std::optional<QSet<QByteArray>> boundSockets;
    // Only what belongs to this user and was neither changed nor modified for
    // so long; of an entry everything or nothing. What stays for this reason is
    // no problem and is not reported.
    std::optional<std::chrono::seconds> minimumAge;
    qint64 now = 0; // seconds since 1970, for minimumAge
};

struct RemovalProblem {
    QByteArray path;
    QString reason; // for the user

    bool operator==(const RemovalProblem &) const = default;
};

struct RemovalReport {
    qint64 freedBytes = 0;          // given back to the disk: a file of several names counts with its last
    qint64 removedFiles = 0;        // and links, sockets …; not folders
    QList<RemovalProblem> problems; // the first hundred
    qint64 problemCount = 0;

    void add(const RemovalReport &other);
    bool operator==(const RemovalReport &) const = default;
};

// A folder whose contents may be removed. Opened once: what it is called later
// does not matter.
class RemovalRoot {
public:
    // Why the folder cannot be a root, in words for the user: missing, not a
    // folder, protected, not readable; else empty. A link to a folder is
    // resolved first.
    static QString obstacle(const QByteArray &folder, const RemovalRules &rules);

    RemovalRoot(const QByteArray &folder, RemovalRules rules);
    ~RemovalRoot();
    RemovalRoot(const RemovalRoot &) = delete;
    RemovalRoot &operator=(const RemovalRoot &) = delete;

    bool isOpen() const;
    const QByteArray &canonicalPath() const;
    // The direct entries by name, sorted; empty when it cannot be listed.
    QList<QByteArray> entries() const;
    // The entry's own size as a file manager shows it (a folder's is the
    // folder's alone); 0 when unknown.
    qint64 ownSize(const QByteArray &entry) const;
    // Whether under a minimum age the entry may go as a whole; nothing in it must
    // stay for any other reason either. Without a minimum age it may: what keeps it
    // is seen when it is removed.
    bool mayGo(const QByteArray &entry) const;
    // The direct entry and everything in it. Stops soon after the cancelling.
    RemovalReport remove(const QByteArray &entry, const Cancellation &cancellation) const;

private:
    struct State;
    std::unique_ptr<State> _state;
};

// The places no tool ever removes on any host, for protectedPaths: the root of
// the file system and its first floor but the temporary folder, home and its
// well-known folders (documents, pictures …). Canonical, as far as they exist.
QList<QByteArray> protectedHostPaths();

} // namespace velbrix
