#include "maintenance/backup/ArchiveRun.h"
using namespace Qt::StringLiterals;
namespace velbrix {
QCoro::Task<BackupOutcome> archiveFolder(Archiver &, BackupRunRequest)
{
    co_return BackupOutcome::failed(u"压缩失败 (exit 1)"_s);
}
} // namespace velbrix
