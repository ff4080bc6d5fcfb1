#include "maintenance/cleanup/CleanupTypes.h"

#include "foundation/Text.h"

#include <algorithm>

using namespace Qt::StringLiterals;

namespace velbrix {
namespace {

constexpr qsizetype mostNotes = 5; // of a kind

QStringList lines(const QString &form, const QList<CleanupNote> &notes)
{
    QStringList lines;
    for (const CleanupNote &note : notes.first(std::min(mostNotes, notes.size())))
        lines.append(form.arg(oneLine(note.what), note.why));
    if (notes.size() > mostNotes)
        lines.append(u"…… 共 %1 个"_s.arg(notes.size()));
    return lines;
}

} // namespace

QString resultText(const CleanupReport &report)
{
    const CleanupPhase &phase = report.outcome;
    if (phase.kind == CleanupPhase::Kind::failed)
        return phase.text;
    if (phase.kind != CleanupPhase::Kind::done)
        return {};
    const bool hasFailed = !report.failed.isEmpty();
    if (hasFailed && report.handledCount() == 0)
        return report.wasCancelled ? u"清理已取消"_s : u"没有清理成功"_s;
    const QString how = report.wasCancelled ? u"清理已取消，"_s
                        : hasFailed         ? u"部分项目没有清理成功，"_s
                                            : u"清理完成！"_s;
    const QString count = u"%1处理了 %2 个项目"_s.arg(how).arg(report.handledCount());
    return phase.totalBytes > 0 ? count + u"（释放约 %1）"_s.arg(formatByteCount(phase.totalBytes)) : count;
}

QStringList reportLines(const CleanupReport &report)
{
    QStringList all;
    const RemovalReport &removal = report.removal;
    if (removal.removedFiles > 0 || removal.freedBytes > 0)
        all.append(u"实际释放 %1，共删除 %2 个文件"_s.arg(formatByteCount(removal.freedBytes))
                       .arg(removal.removedFiles));
    else if (report.outcome.kind == CleanupPhase::Kind::done && report.outcome.cleanedCount == 0)
        all.append(u"没有需要删除的文件"_s);
    if (!report.unmeasured.isEmpty())
        all.append(u"已执行，释放的空间无法测量：%1"_s.arg(report.unmeasured.join(u"、"_s)));
    all += lines(u"%1没有成功：%2"_s, report.failed);
    if (report.wasCancelled)
        all.append(u"余下的没有清理"_s);
    if (!report.skipped.isEmpty())
        all.append(u"因正在运行而跳过：%1"_s.arg(report.skipped.join(u"、"_s)));
    all += lines(u"%1 整个保留：%2"_s, report.kept);
    return all;
}

} // namespace velbrix
