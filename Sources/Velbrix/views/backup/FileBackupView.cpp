#include "views/backup/FileBackupView.h"

#include "app/AppServices.h"
#include "views/Follow.h"
#include "views/backup/AddBackupTaskSheet.h"
#include "views/backup/BackupArchivesSheet.h"
#include "views/backup/BackupQuestionSheet.h"
#include "views/backup/BackupTaskCard.h"
#include "views/components/EmptyState.h"
#include "views/components/Parts.h"
#include "views/components/SettingRow.h"
#include "views/components/SymbolLabel.h"

#include <QHBoxLayout>
#include <QLabel>
#include <QPushButton>
#include <QVBoxLayout>

#include <algorithm>

using namespace Qt::StringLiterals;

namespace velbrix {

FileBackupView::FileBackupView(const ViewContext &context, QWidget *parent)
    : Page(u"backupPage"_s, u"文件备份"_s, u"按计划把文件夹压缩归档，或同步到另一个位置。"_s, parent),
      _context(context)
{
    addProblem();
    add(makeTop());
    _cards = new QWidget;
    _list = new QVBoxLayout(_cards);
    _list->setContentsMargins(0, 0, 0, 0);
    _list->setSpacing(12);
    add(_cards);
    add(makeEmpty());
    const FileBackupController &backups = context.services.fileBackup;
    connect(&backups, &FileBackupController::questionChanged, this, [this] { showQuestion(); });
    follow(backups, &FileBackupController::tasksChanged, this, [this] { showTasks(); });
}

QWidget *FileBackupView::makeTop()
{
    _top = new QWidget;
    _count = makeText({}, u"secondary"_s);
    _count->setObjectName(u"backupCount"_s);
    QPushButton *const add =
        makeButton(_context.theme, {u"backupAdd"_s, u"添加任务"_s, u"plus"_s, u"primary"_s});
    add->setMinimumHeight(30);
    auto *line = new QHBoxLayout(_top);
    line->setContentsMargins(0, 0, 0, 0);
    line->addWidget(_count, 1);
    line->addWidget(add);
    connect(add, &QPushButton::clicked, this, [this] { edit({}); });
    return _top;
}

void FileBackupView::addProblem()
{
    auto *card = new Card;
    add(card);
    card->setObjectName(u"backupStorageProblem"_s);
    auto *row = new SettingRow(u"有任务没有读出来"_s, {}, nullptr);
    row->setLeading(
        new SymbolLabel(_context.theme, u"exclamationmark.triangle.fill"_s, 22, ThemeColor::warning));
    card->addRow(row);
    const FileBackupController &backups = _context.services.fileBackup;
    follow(backups, &FileBackupController::storageProblemChanged, card, [card, row, &backups] {
        row->setDescription(backups.storageProblem());
        card->setVisible(!backups.storageProblem().isEmpty());
    });
}

QWidget *FileBackupView::makeEmpty()
{
    auto *card = new Card;
    auto *empty = new EmptyState(_context.theme, u"backupEmpty"_s,
                                 {u"externaldrive.badge.timemachine"_s, u"还没有备份任务"_s,
                                  u"选一个文件夹和保存位置，到时间就自动备份"_s, u"添加任务…"_s});
    card->addRow(empty);
    connect(empty, &EmptyState::acted, this, [this] { edit({}); });
    _empty = card;
    return card;
}

void FileBackupView::showEvent(QShowEvent *event)
{
    Page::showEvent(event);
    showQuestion(); // it may be older than the page
}

void FileBackupView::showTasks()
{
    const QList<BackupTask> tasks = _context.services.fileBackup.tasks();
    QList<BackupTaskCard *> before = std::exchange(_shown, {});
    for (qsizetype place = 0; place < tasks.size(); ++place) {
        const BackupTask &task = tasks[place];
        const auto found = std::ranges::find(before, task.id, &BackupTaskCard::id);
        BackupTaskCard *card = nullptr;
        if (found != before.end()) {
            card = *found;
            before.erase(found);
            card->setTask(task);
        } else {
            card = new BackupTaskCard(_context, task);
            connect(card, &BackupTaskCard::editWanted, this, [this](const QString &id) { editById(id); });
            connect(card, &BackupTaskCard::archivesWanted, this,
                    [this](const QString &id) { openArchives(id); });
        }
        _list->insertWidget(static_cast<int>(place), card);
        _shown.append(card);
    }
    for (BackupTaskCard *gone : std::as_const(before)) {
        gone->hide();
        gone->deleteLater(); // one of its buttons may have been clicked just now
    }
    _count->setText(u"共 %1 个任务"_s.arg(tasks.size()));
    _top->setVisible(!tasks.isEmpty());
    _cards->setVisible(!tasks.isEmpty());
    _empty->setVisible(tasks.isEmpty());
}

void FileBackupView::showQuestion()
{
    const auto question = _context.services.fileBackup.question();
    if (question.has_value() == !_question.isNull())
        return;
    if (question) {
        _question = new BackupQuestionSheet(_context, *question, this);
        _question->open();
    } else {
        _question->dismiss();
        _question = nullptr;
    }
}

void FileBackupView::edit(const BackupTask &task)
{
    (new AddBackupTaskSheet(_context, task, this))->open();
}

void FileBackupView::editById(const QString &id)
{
    if (const auto task = _context.services.fileBackup.task(id))
        edit(*task);
}

void FileBackupView::openArchives(const QString &id)
{
    if (const auto task = _context.services.fileBackup.task(id))
        (new BackupArchivesSheet(_context, *task, this))->open();
}

} // namespace velbrix
