#include "views/cleanup/CleanupWords.h"

#include "foundation/ByteCount.h"
#include "foundation/OneLine.h"
#include "maintenance/cleanup/SystemCleaner.h"
#include "views/ShownPath.h"

#include <algorithm>

using namespace Qt::StringLiterals;

namespace velbrix {
namespace {

// "用户缓存 — 1.2 GB（需要管理员权限，排除 2 个条目）". Folders of the user's
// are told with their path: many are called "build".
QString itemLine(const SystemCleaner &cleaner, const CleanupItem &item)
{
    QString line = oneLine(item.customPath ? shownPath(*item.customPath) : item.name);
    if (const auto bytes = cleaner.measuredBytes(item.id))
        line += u" — "_s + formatByteCount(*bytes);
    QStringList marks;
    if (cleaner.isAdministrative(item.id))
        marks.append(u"需要管理员权限"_s);
    if (cleaner.forcedItems().contains(item.id) && cleaner.busyItems().contains(item.id))
        marks.append(u"正在运行，仍要清理"_s);
    if (const auto count = cleaner.opened().leftOutCount(item.id); count > 0)
        marks.append(u"排除 %1 个条目"_s.arg(count));
    return marks.isEmpty() ? line : line + u"（%1）"_s.arg(marks.join(u"，"_s));
}

} // namespace

QString selectionText(const SystemCleaner &cleaner)
{
    const auto selected = std::ranges::count_if(cleaner.items(), &CleanupItem::isSelected);
    if (selected == 0)
        return u"没有选择任何清理项"_s;
    const qsizetype skipped = cleaner.itemsToSkip().size();
    const QString text = u"已选 %1 项"_s.arg(selected);
    return skipped > 0 ? text + u"，其中 %1 项正在使用，将跳过"_s.arg(skipped) : text;
}

NoticeSheet::Words cleanupQuestion(const SystemCleaner &cleaner)
{
    const QList<CleanupItem> items = cleaner.itemsToClean();
    const qint64 bytes = cleaner.selectedBytes();
    NoticeSheet::Words words;
    words.symbol = u"trash"_s;
    words.title = u"确认清理"_s;
    words.message = u"将清理已选中的 %1 个项目%2，操作不可撤销。"_s.arg(items.size())
                        .arg(bytes > 0 ? u"（约 %1）"_s.arg(formatByteCount(bytes)) : QString());
    for (const CleanupItem &item : items)
        words.details.append(itemLine(cleaner, item));
    const QStringList skipped = cleaner.itemsToSkip();
    if (!skipped.isEmpty())
        words.message += u"另有 %1 个项目正在运行，将跳过。"_s.arg(skipped.size());
    for (const QString &name : skipped)
        words.details.append(u"跳过：%1（正在运行）"_s.arg(oneLine(name)));
    words.confirm = u"清理"_s;
    words.isDestructive = true;
    return words;
}

QString contentsText(const CleanupContents &contents)
{
    if (!contents.problem.isEmpty())
        return contents.problem;
    if (contents.entries.isEmpty())
        return contents.isMeasuring ? u"正在读取…"_s : u"没有可清理的内容"_s;
    const auto leftOut = std::ranges::count(contents.entries, false, &CleanupEntry::isIncluded);
    QString text = u"共 %1 个条目"_s.arg(contents.entries.size());
    if (leftOut > 0)
        text += u"，已排除 %1 个"_s.arg(leftOut);
    return contents.isMeasuring ? text + u"，正在计算大小…"_s : text;
}

QString reportText(const CleanupReport &report)
{
    QStringList lines;
    if (report.outcome.kind == CleanupPhase::Kind::done) {
        const RemovalReport &removal = report.removal;
        if (removal.removedFiles > 0 || removal.freedBytes > 0)
            lines.append(u"实际释放 %1，共删除 %2 个文件"_s.arg(formatByteCount(removal.freedBytes))
                             .arg(removal.removedFiles));
        else if (report.outcome.cleanedCount == 0)
            lines.append(u"没有需要删除的文件"_s);
    }
    if (report.wasCancelled)
        lines.append(u"余下的没有清理"_s);
    if (!report.skipped.isEmpty())
        lines.append(u"因正在运行而跳过：%1"_s.arg(report.skipped.join(u"、"_s)));
    return lines.join(u'\n');
}

QString problemText(const RemovalReport &removal)
{
    if (removal.problemCount == 0)
        return {};
    const QString text = u"有 %1 个条目没有删除"_s.arg(removal.problemCount);
    return removal.problemCount > removal.problems.size()
               ? text + u"，列出前 %1 个"_s.arg(removal.problems.size())
               : text;
}

} // namespace velbrix
