#include "maintenance/uninstall/PutBackSequence.h"

#include "maintenance/uninstall/UninstallJournal.h"
#include "platform/TrashCan.h"

#include <QPointer>

#include <ranges>

using namespace Qt::StringLiterals;

namespace velbrix {
namespace {

QString message(const UninstallRecord &record, qsizetype failures)
{
    QStringList parts;
    if (const qsizetype restored = record.moved.size() - failures; restored > 0)
        parts << u"已将「%1」的 %2 项放回原处"_s.arg(record.name, QString::number(restored));
    if (failures > 0)
        parts << u"%1 项未能放回"_s.arg(failures);
    if (!record.removedPackage.isEmpty())
        parts << u"软件包 %1 不能放回，请重新安装"_s.arg(record.removedPackage);
    return parts.join(u"，"_s);
}

} // namespace

QCoro::Task<QString> PutBackSequence::run(UninstallRecord record)
{
    const QPointer self(this);
    UninstallRecord rest = record;
    for (const MovedItem &item : record.moved | std::views::reverse) {
        Result<void> restored = failure(u"不知道它在废纸篓中的位置"_s);
        if (!item.trashed.isEmpty())
            restored = co_await _trash.putBack(item.trashed, item.original);
        if (!self)
            co_return QString();
        if (!restored) {
            Q_EMIT failed({item.original, restored.error().message});
            continue;
        }
        rest.moved.removeOne(item);
        (void)co_await _journal.put(rest);
        if (!self)
            co_return QString();
        Q_EMIT recorded();
    }
    if (rest.moved.isEmpty() && !record.moved.isEmpty())
        (void)co_await _journal.remove(record.id);
    if (!self)
        co_return QString();
    Q_EMIT recorded();
    co_return message(record, rest.moved.size());
}

} // namespace velbrix
