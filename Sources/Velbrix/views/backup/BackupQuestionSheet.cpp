#include "views/backup/BackupQuestionSheet.h"

#include "app/AppServices.h"
#include "views/ShownText.h"
#include "views/components/Parts.h"

#include <QLabel>
#include <QPushButton>

#include <utility>

using namespace Qt::StringLiterals;

namespace velbrix {
namespace {

constexpr int sheetWidth = 480;

struct QuestionWords {
    QString title;
    QString message;
    QString consequence;
    QString decline;
    QString confirm;
    bool isGrave = false;
};

QuestionWords aboutDeletions(const QString &name, const BackupDoubt &doubt, bool setsAside)
{
    const bool isForeign = doubt.kind == BackupDoubt::Kind::foreignMirror;
    const QString why = isForeign ? u"「%1」的同步文件夹已经存在，但不是这个任务建立的。"_s
                                  : u"「%1」的源文件夹里少了许多文件。"_s;
    const QString replaced = isForeign ? u"同名的文件会被覆盖，"_s : QString();
    return {isForeign ? u"要接管这个同步文件夹吗？"_s : u"要删除这么多文件吗？"_s,
            (why + u"继续的话，"_s + replaced + u"同步文件夹现有的 %2 个文件中会有 %3 个被删除。"_s)
                .arg(name, QString::number(doubt.existing), QString::number(doubt.lost)),
            setsAside ? u"被删除的文件会移到带日期的文件夹，保留 30 天。"_s
                      : u"这个任务没有开启留存，被删除的文件无法找回。"_s,
            u"不同步"_s,
            u"删除 %1 个文件并同步"_s.arg(doubt.lost),
            !setsAside};
}

QuestionWords aboutShrinking(const QString &name, const BackupDoubt &doubt)
{
    return {u"少了这么多文件，要继续压缩吗？"_s,
            u"「%1」的源文件夹比上一个完整归档少了 %2 个文件（共 %3 个）。"_s.arg(
                name, QString::number(doubt.lost), QString::number(doubt.existing)),
            u"继续的话，新归档会计入保留份数，仍有这些文件的旧归档以后会被删除。"_s,
            u"不压缩"_s,
            u"继续压缩"_s,
            true};
}

QuestionWords wordsFor(const ViewContext &context, const BackupQuestion &question)
{
    const QString name = shownName(question.name);
    const auto task = context.services.fileBackup.task(question.taskId);
    switch (question.doubt.kind) {
    case BackupDoubt::Kind::deletions:
    case BackupDoubt::Kind::foreignMirror:
        return aboutDeletions(name, question.doubt, task && task->setsAside);
    case BackupDoubt::Kind::shrunkSource:
        return aboutShrinking(name, question.doubt);
    }
    std::unreachable();
}

} // namespace

BackupQuestionSheet::BackupQuestionSheet(const ViewContext &context, const BackupQuestion &question,
                                         QWidget *page)
    : Sheet(context.theme,
            {u"backupQuestion"_s, wordsFor(context, question).title, wordsFor(context, question).message},
            sheetWidth, page)
{
    FileBackupController &backups = context.services.fileBackup;
    const QuestionWords words = wordsFor(context, question);
    setBody(makeText(words.consequence, words.isGrave ? u"warning"_s : u"note"_s));
    _cancel = addButton({u"questionDecline"_s, words.decline, {}, {}});
    QPushButton *const confirm = addButton({u"questionConfirm"_s, words.confirm, {}, u"destructive"_s});
    connect(this, &Sheet::cancelled, this, [&backups] { backups.decline(); });
    connect(_cancel, &QPushButton::clicked, this, &Sheet::cancelled);
    connect(confirm, &QPushButton::clicked, this, [&backups] { backups.confirm(); });
}

void BackupQuestionSheet::focusDefault()
{
    _cancel->setFocus();
}

} // namespace velbrix
