#pragma once

#include "foundation/Cancellation.h"
#include "foundation/Result.h"

#include <QByteArrayList>
#include <QString>

namespace velbrix {

// Reads zip archives (PKWARE's APPNOTE) that may lack the records of zip64
// although they have more than 65,535 entries or 4 GiB: their numbers hold what
// fits of the real ones. So the entries are followed one after the other to where
// each one's data end. Blocking.

// The names in the directory as they are stored; a folder's ends in "/".
Result<QByteArrayList> zipNames(const QString &archive);

// Reads all of it and compares sums and sizes; a failure says what is wrong.
Result<void> checkZip(const QString &archive, const Cancellation &cancellation);

} // namespace velbrix
