#include "maintenance/cleanup/CleanupTypes.h"

#include "foundation/ByteCount.h"

using namespace Qt::StringLiterals;

namespace velbrix {

QString resultText(const CleanupPhase &phase)
{
    if (phase.kind == CleanupPhase::Kind::failed)
        return phase.text;
    if (phase.kind != CleanupPhase::Kind::done)
        return {};
    const QString count = u"清理完成！处理了 %1 个项目"_s.arg(phase.cleanedCount);
    return phase.totalBytes > 0 ? count + u"（释放约 %1）"_s.arg(formatByteCount(phase.totalBytes)) : count;
}

} // namespace velbrix
