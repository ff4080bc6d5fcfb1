#pragma once

#include <QString>

namespace velbrix {

// Which file, folder or link lies at the path, to be kept in the journal: it
// stays the same when the item is moved. Empty when nothing is there or nobody
// tells. Blocking.
QString itemIdentity(const QString &path);

// Whether both tell of one item, though it may have been written to meanwhile,
// or its disk have numbered its files anew. What is unknown may be anything.
bool isSameItem(const QString &before, const QString &now);

} // namespace velbrix
