#include "views/recorder/LeftoversCard.h"

#include "app/AppServices.h"
#include "views/Follow.h"
#include "views/components/JobBar.h"
#include "views/components/Parts.h"
#include "views/components/SettingRow.h"
#include "views/components/SymbolLabel.h"

#include <QFileInfo>
#include <QHBoxLayout>
#include <QLabel>
#include <QPushButton>
#include <QVBoxLayout>

using namespace Qt::StringLiterals;

namespace velbrix {

LeftoversCard::LeftoversCard(const ViewContext &context, QWidget *parent)
    : Card(parent), _context(context), _list(new QWidget)
{
    setObjectName(u"leftovers"_s);
    auto *rows = new QVBoxLayout(_list);
    rows->setContentsMargins(0, 0, 0, 0);
    rows->setSpacing(0);
    addRow(_list);
    auto *job = new JobBar(context.theme, u"repairJob"_s);
    job->setCancellable(false);
    job->setJob(u"正在修复，原文件在完成前不会改动…"_s, 0, 0);
    addRow(job);

    auto *problem = new SettingRow(u"没有修复"_s, {}, nullptr);
    problem->setObjectName(u"repairProblem"_s);
    problem->setLeading(new SymbolLabel(context.theme, u"xmark.circle.fill"_s, 22, ThemeColor::bad));
    addRow(problem);

    UnfinishedRecordings &unfinished = context.services.recorder.unfinished();
    follow(unfinished, &UnfinishedRecordings::problemChanged, this, [problem, &unfinished] {
        problem->setDescription(unfinished.problem());
        problem->setVisible(!unfinished.problem().isEmpty());
    });
    follow(unfinished, &UnfinishedRecordings::leftoversChanged, this, [this] { rebuild(); });
    follow(unfinished, &UnfinishedRecordings::isRepairingChanged, this, [this, job, &unfinished] {
        job->setVisible(unfinished.isRepairing());
        _list->setEnabled(!unfinished.isRepairing());
    });
}

void LeftoversCard::rebuild()
{
    const auto old = _list->findChildren<QWidget *>(Qt::FindDirectChildrenOnly);
    for (QWidget *row : old) {
        row->hide();
        _list->layout()->removeWidget(row);
        row->deleteLater(); // one of its buttons may have been clicked just now
    }
    const QStringList paths = _context.services.recorder.unfinished().leftovers();
    for (const QString &path : paths) {
        if (_list->layout()->count() > 0)
            _list->layout()->addWidget(makeHairline());
        _list->layout()->addWidget(makeRow(path));
    }
    setVisible(!paths.isEmpty());
}

QWidget *LeftoversCard::makeRow(const QString &path)
{
    UnfinishedRecordings &unfinished = _context.services.recorder.unfinished();
    auto *buttons = new QWidget;
    auto *line = new QHBoxLayout(buttons);
    line->setContentsMargins(0, 0, 0, 0);
    line->setSpacing(4);
    const auto add = [&](const QString &name, const QString &text, const QString &role, auto act) {
        QPushButton *const button = makeButton(_context.theme, {name, text, {}, role});
        line->addWidget(button);
        connect(button, &QPushButton::clicked, this, act);
    };
    add(u"leftoverReveal"_s, u"在文件夹中显示"_s, u"plain"_s, [this, path] { _context.reveal(path); });
    add(u"leftoverDismiss"_s, u"忽略"_s, u"plain"_s, [&unfinished, path] { unfinished.dismiss(path); });
    add(u"leftoverRepair"_s, u"修复"_s, {}, [&unfinished, path] { unfinished.repair(path); });
    return new SettingRow(QFileInfo(path).fileName(), u"录制没有正常结束，文件仍在。修复后即可播放。"_s,
                          buttons);
}

} // namespace velbrix
