#include "maintenance/backup/BackupRun.h"

#include <QThreadPool>

using namespace Qt::StringLiterals;

namespace velbrix {

BackupOutcome BackupOutcome::cancelled()
{
    return {State::cancelled, u"已取消"_s};
}

QThreadPool &backupWorkers()
{
    static auto *const pool = [] {
        auto *const made = new QThreadPool;
        // A disk that never answers keeps its thread; the others need theirs.
        made->setMaxThreadCount(8);
        return made;
    }();
    return *pool;
}

} // namespace velbrix
