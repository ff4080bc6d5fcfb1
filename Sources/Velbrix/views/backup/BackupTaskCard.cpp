#include "views/backup/BackupTaskCard.h"

#include "app/AppServices.h"
#include "maintenance/backup/BackupNames.h"
#include "views/Follow.h"
#include "views/ShownText.h"
#include "views/backup/BackupWords.h"
#include "views/components/Confirmation.h"
#include "views/components/ElidedLabel.h"
#include "views/components/JobBar.h"
#include "views/components/Parts.h"
#include "views/components/Switch.h"
#include "views/components/SymbolLabel.h"

#include <QFileInfo>
#include <QHBoxLayout>
#include <QLabel>
#include <QPushButton>
#include <QVBoxLayout>

using namespace Qt::StringLiterals;

namespace velbrix {
namespace {

constexpr int steps = 1000;

} // namespace

BackupTaskCard::BackupTaskCard(const ViewContext &context, const BackupTask &task, QWidget *parent)
    : Card(parent), _context(context), _task(task)
{
    setObjectName(u"backupTask.%1"_s.arg(task.id));
    addRow(makeTop());
    addRow(makeFacts());
    _running = new QWidget;
    auto *rows = new QVBoxLayout(_running);
    rows->setContentsMargins(0, 6, 0, 2);
    rows->setSpacing(0);
    _progress = new ElidedLabel({}, u"note"_s, Qt::ElideMiddle);
    _progress->setObjectName(u"backupProgress"_s);
    _job = new JobBar(context.theme, u"backupJob"_s);
    rows->addWidget(_progress);
    rows->addWidget(_job);
    addRow(_running);
    addRow(makeButtons());

    FileBackupController &backups = context.services.fileBackup;
    connect(_job, &JobBar::cancelled, this, [&backups] { backups.cancelRun(); });
    const auto run = [this] { showRun(); };
    connect(&backups, &FileBackupController::isRunningBackupChanged, this, run);
    connect(&backups, &FileBackupController::currentRunningTaskIDChanged, this, run);
    connect(&backups, &FileBackupController::runningShareChanged, this, run);
    connect(&backups, &FileBackupController::runningProgressChanged, this, run);
    showTask();
    showRun();
}

QWidget *BackupTaskCard::makeTop()
{
    _symbol = new SymbolLabel(_context.theme, kindSymbol(_task.kind), 24, ThemeColor::accentText);
    _name = new ElidedLabel({}, u"heading"_s);
    _kind = makeText({}, u"note"_s);
    _enabled = new Switch(_context.theme, u"backupEnabled.%1"_s.arg(_task.id));
    auto *top = new QWidget;
    auto *line = new QHBoxLayout(top);
    line->setContentsMargins(0, 10, 0, 10);
    line->setSpacing(14);
    auto *words = new QVBoxLayout;
    words->setSpacing(2);
    words->addWidget(_name);
    words->addWidget(_kind);
    line->addWidget(_symbol);
    line->addLayout(words, 1);
    line->addWidget(_enabled);
    connect(_enabled, &Switch::wanted, this,
            [this](bool on) { _context.services.fileBackup.setEnabled(_task.id, on); });
    return top;
}

QWidget *BackupTaskCard::makeFacts()
{
    const Theme &theme = _context.theme;
    _source = new ElidedLabel({}, u"body"_s, Qt::ElideMiddle);
    _destination = new ElidedLabel({}, u"body"_s, Qt::ElideMiddle);
    _plan = makeText({}, u"note"_s);
    _mark = new SymbolLabel(theme, u"checkmark.circle.fill"_s, 16, ThemeColor::good);
    _result = makeText({}, u"note"_s);
    auto *facts = new QWidget;
    auto *rows = new QVBoxLayout(facts);
    rows->setContentsMargins(0, 10, 0, 10);
    rows->setSpacing(6);
    auto *way = new QHBoxLayout;
    way->setSpacing(8);
    way->addWidget(new SymbolLabel(theme, u"folder"_s, 16, ThemeColor::secondary));
    way->addWidget(_source);
    way->addWidget(new SymbolLabel(theme, u"arrow.right"_s, 14, ThemeColor::secondary));
    way->addWidget(_destination);
    way->addStretch(1);
    auto *plan = new QHBoxLayout;
    plan->setSpacing(8);
    plan->addWidget(new SymbolLabel(theme, u"clock"_s, 16, ThemeColor::secondary), 0, Qt::AlignTop);
    plan->addWidget(_plan, 1);
    auto *result = new QHBoxLayout;
    result->setSpacing(8);
    result->addWidget(_mark, 0, Qt::AlignTop);
    result->addWidget(_result, 1);
    rows->addLayout(way);
    rows->addLayout(plan);
    rows->addLayout(result);
    return facts;
}

QWidget *BackupTaskCard::makeButtons()
{
    auto *buttons = new QWidget;
    auto *line = new QHBoxLayout(buttons);
    line->setContentsMargins(0, 8, 0, 8);
    line->setSpacing(8);
    const auto add = [&](const QString &name, const QString &text, const QString &role, auto act) {
        QPushButton *const button =
            makeButton(_context.theme, {u"%1.%2"_s.arg(name, _task.id), text, {}, role});
        button->setAccessibleDescription(_task.name);
        line->addWidget(button);
        connect(button, &QPushButton::clicked, this, act);
        return button;
    };
    _run = add(u"backupRun"_s, u"立即运行"_s, {}, [this] { _context.services.fileBackup.runNow(_task.id); });
    _edit = add(u"backupEdit"_s, u"编辑"_s, {}, [this] { Q_EMIT editWanted(_task.id); });
    _archives = add(u"backupArchives"_s, u"恢复…"_s, {}, [this] { Q_EMIT archivesWanted(_task.id); });
    add(u"backupReveal"_s, u"在文件夹中显示"_s, u"plain"_s, [this] { reveal(); });
    line->addStretch(1);
    add(u"backupRemove"_s, u"删除"_s, u"plainBad"_s, [this] { askToRemove(); });
    return buttons;
}

void BackupTaskCard::setTask(const BackupTask &task)
{
    if (task == _task)
        return;
    _task = task;
    showTask();
}

void BackupTaskCard::showEvent(QShowEvent *event)
{
    Card::showEvent(event);
    showTask(); // "tomorrow" may be today by now
}

void BackupTaskCard::showTask()
{
    _symbol->show(kindSymbol(_task.kind), ThemeColor::accentText);
    _name->setText(_task.name);
    _kind->setText(kindLine(_task.kind));
    _enabled->setOn(_task.isEnabled);
    _enabled->setAccessibleName(u"启用：%1"_s.arg(_task.name));
    _source->setText(shownPath(_task.sourcePath));
    _destination->setText(shownPath(_task.destPath));
    _plan->setText(planText(_task, _context.services.clock.now()));
    _archives->setVisible(_task.kind == BackupTaskKind::backup);
    showResult();
}

void BackupTaskCard::showResult()
{
    const bool hasRun = _task.lastRunAt && _task.lastResult;
    if (!hasRun) {
        _mark->show(u"info.circle"_s, ThemeColor::secondary);
        _result->setText(u"还没有运行过"_s);
        setLook(_result, "role", u"note"_s);
        return;
    }
    QString result = *_task.lastResult;
    const bool isDone = _task.hasSucceeded();
    if (const QString mark = u"✓ "_s; isDone && result.startsWith(mark))
        result.remove(0, mark.size()); // the picture says it
    if (_task.lastFailed)
        _mark->show(u"xmark.circle.fill"_s, ThemeColor::bad);
    else if (isDone)
        _mark->show(u"checkmark.circle.fill"_s, ThemeColor::good);
    else
        _mark->show(u"info.circle"_s, ThemeColor::secondary); // cancelled
    _result->setText(u"%1 · %2"_s.arg(whenText(*_task.lastRunAt, _context.services.clock.now()), result));
    setLook(_result, "role", _task.lastFailed ? u"bad"_s : isDone ? u"good"_s : u"note"_s);
}

void BackupTaskCard::showRun()
{
    const FileBackupController &backups = _context.services.fileBackup;
    const bool isMine = backups.isRunningBackup() && backups.currentRunningTaskID() == _task.id;
    if (isMine)
        _running->show();
    _job->setRunning(isMine, {_run, _edit});
    _running->setVisible(isMine);
    _run->setEnabled(!backups.isRunningBackup());
    if (!isMine)
        return;
    const double share = backups.runningShare();
    _progress->setText(backups.runningProgress());
    if (share < 0)
        _job->setJob(u"进行中"_s, 0, 0);
    else
        _job->setJob(QString::number(qRound(share * 100)) + u'%', qRound(share * steps), steps);
}

void BackupTaskCard::askToRemove()
{
    NoticeSheet::Words words;
    words.symbol = u"trash"_s;
    words.title = u"删除任务「%1」？"_s.arg(shownName(_task.name));
    words.message = u"只删除这个任务的设置，已经备份和同步的文件都会保留。"_s;
    words.confirm = u"删除任务"_s;
    words.isDestructive = true;
    Confirmation::ask(_context.theme, this, words, [this] { _context.services.fileBackup.remove(_task.id); });
}

void BackupTaskCard::reveal()
{
    const QString mirror = mirrorFolder(_task);
    const bool showsMirror = _task.kind == BackupTaskKind::sync && QFileInfo(mirror).isDir();
    _context.reveal(showsMirror ? mirror : _task.destPath);
}

} // namespace velbrix
