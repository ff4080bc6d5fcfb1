#pragma once

#include "foundation/FolderHandle.h"
#include "foundation/Result.h"

#include <QByteArray>
#include <QList>
#include <QSet>

#include <array>
#include <functional>
#include <optional>

namespace velbrix {

// Not every disk tells "Foo" from "foo", or one Unicode normal form of a name from
// another, and some list a name otherwise than it was given. What compares names
// byte by byte then takes the mirror's only copy for one that the source has lost.

struct NamePair {
    QByteArray folder; // below the source or the mirror, empty for itself
    QByteArray first;
    QByteArray second;

    bool operator==(const NamePair &) const = default;
};

// What the names of a source and its mirror tell of the mirror's disk.
struct NameFindings {
    // Entries of the mirror by the name that is listed, and by that of the source
    // which leads to them; a folder comes before what is in it.
    QList<NamePair> respelled;
    std::optional<NamePair> clash; // two names of the source lead to one entry of the mirror
    QList<NamePair> similar;       // two of the source that would clash on such a disk; not tried yet
    // Of each kind of name that some disk writes otherwise one that the mirror does not have.
    std::array<QByteArray, 4> untried;

    bool operator==(const NameFindings &) const = default;
};

// Adds what one folder tells: the names that the source has, those that the mirror
// lists, and what a name leads to in the mirror.
void compareNames(const QByteArray &folder, const QSet<QByteArray> &ours, const QSet<QByteArray> &theirs,
                  const std::function<std::optional<FileIdentity>(const QByteArray &name)> &inMirror,
                  NameFindings &found);

// Gives what is respelled the source's names. A failure says why the mirror's disk
// cannot hold the source's names; nothing has been lost then. Blocking.
Result<void> alignNames(const QByteArray &mirror, const NameFindings &found);

} // namespace velbrix
