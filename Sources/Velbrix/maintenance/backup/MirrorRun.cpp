#include "maintenance/backup/MirrorRun.h"
using namespace Qt::StringLiterals;
namespace velbrix {
QCoro::Task<BackupOutcome> mirrorFolder(Clock &, BackupRunRequest)
{
    co_return BackupOutcome::failed(u"扫描源文件夹失败"_s);
}
} // namespace velbrix
