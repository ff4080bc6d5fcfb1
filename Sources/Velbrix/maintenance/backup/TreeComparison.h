#pragma once

#include "foundation/Cancellation.h"
#include "foundation/ExcludeRules.h"
#include "maintenance/backup/MirrorNames.h"

#include <QByteArray>

namespace velbrix {

// What a folder holds, and what its mirror would lose by becoming equal to it.
// What the rules exclude counts on neither side.
struct TreeFacts {
    bool isReadable = false; // the source itself
    bool isCancelled = false;
    qint64 files = 0;          // regular ones in the source
    qint64 items = 0;          // everything in it but folders
    qint64 junk = 0;           // of them, what systems leave in folders on their own
    qint64 entries = 0;        // everything in it
    qint64 bytes = 0;          // of the regular files
    qint64 allocated = 0;      // of them; less where files have holes
    qint64 mirrorFiles = 0;    // all that are not folders
    qint64 deletions = 0;      // of them, not in the source or a folder there
    qint64 deletedEntries = 0; // with the folders
    qint64 incoming = 0;       // allocated to files that the mirror has not, and large ones of another size
    qint64 outgoing = 0;       // to those in the mirror that they replace
    NameFindings names = {};

    bool operator==(const TreeFacts &) const = default;
};

// Whether only systems make entries of that name, and on their own: what Finder and
// Explorer note of a folder, a disk's trash and index.
bool isJunk(const QByteArray &name);

// Native paths; no link is followed below them. Blocking.
TreeFacts compareTrees(const QByteArray &source, const QByteArray &mirror, const ExcludeRules &rules,
                       const Cancellation &cancellation);
// The source alone.
TreeFacts measureTree(const QByteArray &source, const ExcludeRules &rules, const Cancellation &cancellation);

} // namespace velbrix
