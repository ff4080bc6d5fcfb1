#include "views/backup/DeletionQuestionSheet.h"

#include "app/AppServices.h"
#include "views/ShownText.h"
#include "views/components/Parts.h"

#include <QLabel>
#include <QPushButton>

using namespace Qt::StringLiterals;

namespace velbrix {
namespace {

constexpr int sheetWidth = 480;

QString message(const BackupQuestion &question)
{
    return u"「%1」的源文件夹里少了许多文件。继续的话，同步文件夹现有的 %2 个文件中会有 %3 个被删除。"_s.arg(
        shownName(question.name), QString::number(question.existing), QString::number(question.deletions));
}

QString consequence(const std::optional<BackupTask> &task)
{
    return task && task->setsAside ? u"被删除的文件会移到带日期的文件夹，保留 30 天。"_s
                                   : u"这个任务没有开启留存，被删除的文件无法找回。"_s;
}

} // namespace

DeletionQuestionSheet::DeletionQuestionSheet(const ViewContext &context, const BackupQuestion &question,
                                             QWidget *page)
    : Sheet(context.theme, {u"deletionQuestion"_s, u"要删除这么多文件吗？"_s, message(question)}, sheetWidth,
            page)
{
    FileBackupController &backups = context.services.fileBackup;
    const auto task = backups.task(question.taskId);
    setBody(makeText(consequence(task), task && task->setsAside ? u"note"_s : u"warning"_s));
    _cancel = addButton({u"deletionDecline"_s, u"不同步"_s, {}, {}});
    QPushButton *const confirm = addButton(
        {u"deletionConfirm"_s, u"删除 %1 个文件并同步"_s.arg(question.deletions), {}, u"destructive"_s});
    connect(this, &Sheet::cancelled, this, [&backups] { backups.declineDeletions(); });
    connect(_cancel, &QPushButton::clicked, this, &Sheet::cancelled);
    connect(confirm, &QPushButton::clicked, this, [&backups] { backups.confirmDeletions(); });
}

void DeletionQuestionSheet::focusDefault()
{
    _cancel->setFocus();
}

} // namespace velbrix
