#include "maintenance/cleanup/CleanupTypes.h"

#include "foundation/Text.h"

using namespace Qt::StringLiterals;

namespace velbrix {

QString resultText(const CleanupReport &report)
{
    const CleanupPhase &phase = report.outcome;
    if (phase.kind == CleanupPhase::Kind::failed)
        return phase.text;
    if (phase.kind != CleanupPhase::Kind::done)
        return {};
    const QString how = report.wasCancelled ? u"清理已取消，"_s : u"清理完成！"_s;
    const QString count = u"%1处理了 %2 个项目"_s.arg(how).arg(phase.cleanedCount);
    return phase.totalBytes > 0 ? count + u"（释放约 %1）"_s.arg(formatByteCount(phase.totalBytes)) : count;
}

} // namespace velbrix
