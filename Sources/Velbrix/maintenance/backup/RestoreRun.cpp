#include "maintenance/backup/RestoreRun.h"
using namespace Qt::StringLiterals;
namespace velbrix {
QCoro::Task<BackupOutcome> restoreArchive(Archiver &, RestoreRequest)
{
    co_return BackupOutcome::failed(u"恢复失败"_s);
}
} // namespace velbrix
