#include "views/uninstall/UninstallRecordsCard.h"

#include "app/AppServices.h"
#include "views/Follow.h"
#include "views/ShownText.h"
#include "views/components/Confirmation.h"
#include "views/components/JobBar.h"
#include "views/components/Parts.h"
#include "views/components/SettingRow.h"
#include "views/components/SymbolLabel.h"

#include <QHBoxLayout>
#include <QLabel>
#include <QPushButton>
#include <QVBoxLayout>

using namespace Qt::StringLiterals;

namespace velbrix {

QString recordText(const UninstallRecord &record)
{
    QStringList parts;
    if (!record.moved.isEmpty())
        parts.append(u"%1 项已移到废纸篓"_s.arg(record.moved.size()));
    if (!record.failed.isEmpty())
        parts.append(u"%1 项没有移动"_s.arg(record.failed.size()));
    if (!record.removedPackage.isEmpty())
        parts.append(u"软件包 %1 已移除，需重新安装"_s.arg(record.removedPackage));
    return parts.isEmpty() ? u"没有移动任何项目"_s : parts.join(u" · "_s);
}

UninstallRecordsCard::UninstallRecordsCard(const ViewContext &context, QWidget *parent)
    : Card(parent), _context(context), _none(nullptr), _list(new QWidget), _job(nullptr)
{
    setObjectName(u"uninstallRecords"_s);
    auto *problem = makeText({}, u"warning"_s);
    problem->setObjectName(u"recordsProblem"_s);
    problem->setContentsMargins(0, 10, 0, 10);
    addRow(problem);
    auto *none = makeText(u"没有卸载记录。卸载后可以在这里放回原处。"_s, u"note"_s);
    none->setContentsMargins(0, 12, 0, 12);
    _none = none;
    addRow(none);
    auto *rows = new QVBoxLayout(_list);
    rows->setContentsMargins(0, 0, 0, 0);
    rows->setSpacing(0);
    addRow(_list);
    _job = new JobBar(context.theme, u"putBackJob"_s);
    _job->setCancellable(false);
    _job->setJob(u"正在放回原处…"_s, 0, 0);
    addRow(_job);
    AppScanner &scanner = context.services.uninstaller;
    follow(scanner, &AppScanner::recordsProblemChanged, this, [problem, &scanner] {
        problem->setText(scanner.recordsProblem());
        problem->setVisible(!scanner.recordsProblem().isEmpty());
    });
    follow(scanner, &AppScanner::recordsChanged, this, [this] { rebuild(); });
    connect(&scanner, &AppScanner::isPuttingBackChanged, this, [this] { showBusy(); });
    follow(scanner, &AppScanner::isUninstallingChanged, this, [this] { showBusy(); });
}

void UninstallRecordsCard::rebuild()
{
    const auto old = _list->findChildren<QWidget *>(Qt::FindDirectChildrenOnly);
    for (QWidget *row : old) {
        row->hide();
        _list->layout()->removeWidget(row);
        row->deleteLater(); // one of its buttons may have been clicked just now
    }
    const QList<UninstallRecord> records = _context.services.uninstaller.records();
    for (const UninstallRecord &record : records) {
        if (_list->layout()->count() > 0)
            _list->layout()->addWidget(makeHairline());
        _list->layout()->addWidget(makeRow(record));
    }
    _list->setVisible(!records.isEmpty());
    _none->setVisible(records.isEmpty());
}

QWidget *UninstallRecordsCard::makeRow(const UninstallRecord &record)
{
    auto *row =
        new SettingRow(u"%1（%2）"_s.arg(shownName(record.name), record.at.toString(u"M 月 d 日 HH:mm"_s)),
                       recordText(record), makeButtons(record));
    row->setLeading(new SymbolLabel(_context.theme, u"trash"_s, 22, ThemeColor::secondary));
    return row;
}

QWidget *UninstallRecordsCard::makeButtons(const UninstallRecord &record)
{
    auto *buttons = new QWidget;
    auto *line = new QHBoxLayout(buttons);
    line->setContentsMargins(0, 0, 0, 0);
    line->setSpacing(4);
    QPushButton *const back = makeButton(
        _context.theme, {u"putBack.%1"_s.arg(record.id), u"放回原处"_s, u"arrow.uturn.backward"_s, {}});
    back->setAccessibleName(u"放回原处：%1"_s.arg(record.name));
    back->setEnabled(!record.moved.isEmpty());
    connect(back, &QPushButton::clicked, this,
            [this, id = record.id] { _context.services.uninstaller.putBack(id); });
    QPushButton *const forget =
        makeButton(_context.theme, {u"forget.%1"_s.arg(record.id), u"移除记录"_s, {}, u"plain"_s});
    forget->setAccessibleName(u"移除记录：%1"_s.arg(record.name));
    connect(forget, &QPushButton::clicked, this, [this, record] { askToForget(record); });
    line->addWidget(forget);
    line->addWidget(back);
    return buttons;
}

// Asks only when something may be lost by it.
void UninstallRecordsCard::askToForget(const UninstallRecord &record)
{
    AppScanner &scanner = _context.services.uninstaller;
    if (record.moved.isEmpty()) {
        scanner.forget(record.id);
        return;
    }
    NoticeSheet::Words words;
    words.symbol = u"trash"_s;
    words.title = u"移除「%1」的卸载记录？"_s.arg(shownName(record.name));
    words.message = u"移除后不能再从这里放回原处。废纸篓里的文件不受影响。"_s;
    words.confirm = u"移除记录"_s;
    words.isDestructive = true;
    Confirmation::ask(_context.theme, this, words, [&scanner, id = record.id] { scanner.forget(id); });
}

void UninstallRecordsCard::showBusy()
{
    const AppScanner &scanner = _context.services.uninstaller;
    _job->setVisible(scanner.isPuttingBack());
    _list->setEnabled(!scanner.isPuttingBack() && !scanner.isUninstalling());
}

} // namespace velbrix
