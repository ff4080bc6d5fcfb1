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
    static auto *const pool = new QThreadPool;
    return *pool;
}

} // namespace velbrix
