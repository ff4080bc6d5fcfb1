#include "views/cleanup/CleanupGroupCard.h"

#include "app/AppServices.h"
#include "views/cleanup/CleanupRow.h"

using namespace Qt::StringLiterals;

namespace velbrix {

CleanupGroupCard::CleanupGroupCard(const ViewContext &context, CleanupGroup group, QWidget *parent)
    : Card(parent)
{
    setObjectName(u"cleanupGroup.%1"_s.arg(static_cast<int>(group)));
    setAccessibleName(title(group));
    const SystemCleaner &cleaner = context.services.cleaner;
    for (const CleanupItem &item : cleaner.items()) {
        if (cleaner.group(item.id) != group)
            continue;
        addRow(new CleanupRow(context, item));
        _isEmpty = false;
    }
}

} // namespace velbrix
