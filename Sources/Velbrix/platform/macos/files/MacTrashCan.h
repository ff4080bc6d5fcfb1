#pragma once

#include "platform/TrashCan.h"
#include "platform/macos/files/FinderTrash.h"

#include <QThreadPool>

namespace velbrix {

// NSFileManager, and the Finder for applications that it refuses. The Finder tells neither
// where an item lies now nor what emptying gave back.
class MacTrashCan final : public TrashCan {
public:
    explicit MacTrashCan(Clock &clock) : _finder(clock) { _worker.setMaxThreadCount(1); }

    QCoro::Task<Result<QString>> moveToTrash(const QString path) override;
    QCoro::Task<Result<void>> putBack(const QString trashed, const QString original) override;
    QCoro::Task<Result<RemovalReport>> empty(RemovalRules rules, Cancellation cancellation) override;
    QStringList folders() const override;
    QStringList itemFolders() const override { return folders(); }

private:
    FinderTrash _finder;
    QThreadPool _worker;
};

} // namespace velbrix
