#pragma once

#include "foundation/Cancellation.h"
#include "foundation/ExcludeRules.h"

#include <QByteArray>

namespace velbrix {

// What a folder holds, and what its mirror would lose by becoming equal to it.
// What the rules exclude counts on neither side.
struct TreeFacts {
    bool isReadable = false; // the source itself
    bool isCancelled = false;
    qint64 files = 0;          // regular ones in the source
    qint64 items = 0;          // everything in it but folders
    qint64 entries = 0;        // everything in it
    qint64 bytes = 0;          // of the regular files; only when asked for
    qint64 mirrorFiles = 0;    // all that are not folders
    qint64 deletions = 0;      // of them, not in the source or a folder there
    qint64 deletedEntries = 0; // with the folders

    bool operator==(const TreeFacts &) const = default;
};

// Native paths; no link is followed below them. Blocking.
TreeFacts compareTrees(const QByteArray &source, const QByteArray &mirror, const ExcludeRules &rules,
                       const Cancellation &cancellation);
// The source alone, with its bytes.
TreeFacts measureTree(const QByteArray &source, const ExcludeRules &rules, const Cancellation &cancellation);

} // namespace velbrix
