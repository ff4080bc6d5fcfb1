#pragma once

#include "maintenance/cleanup/CleanupTypes.h"
#include "views/components/NoticeSheet.h"

#include <QString>

namespace velbrix {

class SystemCleaner;

// What the cleaner's page says.

// "已选 12 项，其中 1 项正在使用，将跳过"
QString selectionText(const SystemCleaner &cleaner);
// What is asked before the selected items are cleaned.
NoticeSheet::Words cleanupQuestion(const SystemCleaner &cleaner);
// Above the entries of an opened row.
QString contentsText(const CleanupContents &contents);
// Beneath the result: what was really freed, left alone and not begun. One
// statement a line.
QString reportText(const CleanupReport &report);
// "有 3 个条目没有删除"; empty when all went.
QString problemText(const RemovalReport &removal);

} // namespace velbrix
