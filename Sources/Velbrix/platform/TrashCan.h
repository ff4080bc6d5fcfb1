#pragma once

#include "foundation/ProcessRunner.h"
#include "foundation/Removal.h"
#include "foundation/Result.h"

#include <QCoroTask>
#include <QString>
#include <QStringList>

namespace velbrix {

// The user's trash. Main thread; the work is done off it.
class TrashCan {
public:
    virtual ~TrashCan() = default;

    // Never follows a link: the link itself goes. Where the item lies now;
    // empty when the host moved it without telling.
    virtual QCoro::Task<Result<QString>> moveToTrash(const QString path) = 0;
    // Back to where it was; never replaces what is there by now.
    virtual QCoro::Task<Result<void>> putBack(const QString trashed, const QString original) = 0;
    // For good. A host that does not tell what it freed reports nothing. Ends
    // soon after the cancelling where the host itself empties it.
    virtual QCoro::Task<Result<RemovalReport>> empty(RemovalRules rules, Cancellation cancellation) = 0;
    // What the trash consists of, to be measured; some may be missing.
    virtual QStringList folders() const = 0;
    // Where the items themselves lie, to be listed; some may be missing.
    virtual QStringList itemFolders() const = 0;
};

} // namespace velbrix
