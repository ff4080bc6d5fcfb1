#include "app/AppServices.h"
#include "app/Tool.h"
#include "foundation/Awaitables.h"
#include "foundation/Text.h"

#include <QJsonArray>
#include <QRegularExpression>

#include <algorithm>

using namespace Qt::StringLiterals;

namespace velbrix {
namespace {

const QString confirmOption = u"--yes"_s;

QString kindText(BackupTaskKind kind)
{
    return kind == BackupTaskKind::sync ? u"同步"_s : u"备份"_s;
}

QJsonValue isoDate(const std::optional<QDateTime> &date)
{
    return date ? QJsonValue(date->toString(Qt::ISODate)) : QJsonValue();
}

QJsonObject described(const BackupTask &task)
{
    return {{u"id"_s, task.id},
            {u"name"_s, task.name},
            {u"kind"_s, task.kind == BackupTaskKind::sync ? u"sync"_s : u"backup"_s},
            {u"source"_s, task.sourcePath},
            {u"destination"_s, task.destPath},
            {u"schedule"_s, toJson(task).value("schedule"_L1)},
            {u"enabled"_s, task.isEnabled},
            {u"nextRunAt"_s, isoDate(task.nextRunAt)},
            {u"lastRunAt"_s, isoDate(task.lastRunAt)},
            {u"lastResult"_s, task.lastResult ? QJsonValue(*task.lastResult) : QJsonValue()},
            {u"failed"_s, task.lastFailed},
            {u"keepLast"_s, task.keepLast},
            {u"setsAside"_s, task.setsAside},
            {u"excludes"_s, QJsonArray::fromStringList(task.excludes)}};
}

QString line(const BackupTask &task, bool isRunning)
{
    const QString next =
        task.isEnabled ? u"下次 "_s + task.nextRunAt.toString(u"yyyy-MM-dd HH:mm"_s) : u"已停用"_s;
    const QString state = isRunning ? u"正在运行"_s : task.lastResult.value_or(u"还没有运行过"_s);
    return u"%1  %2  %3  %4 → %5\n    %6，%7；%8"_s.arg(oneLine(task.name), kindText(task.kind), task.id,
                                                        oneLine(task.sourcePath), oneLine(task.destPath),
                                                        scheduleText(task.schedule), next, state);
}

QCoro::Task<CommandReply> list(FileBackupController &backup)
{
    CommandReply reply;
    QJsonArray tasks;
    QStringList lines;
    for (const BackupTask &task : backup.tasks()) {
        const bool isRunning = backup.currentRunningTaskID() == task.id;
        QJsonObject description = described(task);
        description.insert(u"running"_s, isRunning);
        tasks.append(description);
        lines << line(task, isRunning);
    }
    if (lines.isEmpty())
        lines << u"没有备份任务"_s;
    if (!backup.storageProblem().isEmpty())
        lines << backup.storageProblem();
    reply.text = lines.join(u'\n');
    reply.data = {{u"tasks"_s, tasks}, {u"problem"_s, backup.storageProblem()}};
    co_return reply;
}

CommandReply misuse(const QString &text)
{
    return {exitcode::usage, text, {}};
}

// "HH:MM", "D@HH:MM" or "M-D@HH:MM".
std::optional<BackupScheduleTime> scheduleFrom(const QString &option, const QString &text)
{
    static const QRegularExpression daily(u"^()()(\\d{1,2}):(\\d{2})$"_s);
    static const QRegularExpression monthly(u"^()(\\d{1,2})@(\\d{1,2}):(\\d{2})$"_s);
    static const QRegularExpression yearly(u"^(\\d{1,2})-(\\d{1,2})@(\\d{1,2}):(\\d{2})$"_s);
    BackupScheduleTime schedule;
    QRegularExpressionMatch match;
    if (option == "--daily"_L1) {
        match = daily.match(text);
    } else if (option == "--monthly"_L1) {
        schedule.kind = BackupScheduleKind::monthly;
        match = monthly.match(text);
    } else {
        schedule.kind = BackupScheduleKind::yearly;
        match = yearly.match(text);
    }
    if (!match.hasMatch())
        return std::nullopt;
    if (schedule.kind == BackupScheduleKind::yearly)
        schedule.month = match.captured(1).toInt();
    if (schedule.kind != BackupScheduleKind::daily)
        schedule.dayOfMonth = match.captured(2).toInt();
    schedule.hour = match.captured(3).toInt();
    schedule.minute = match.captured(4).toInt();
    const bool isValid = schedule.hour < 24 && schedule.minute < 60 && schedule.dayOfMonth >= 1 &&
                         schedule.dayOfMonth <= 31 && schedule.month >= 1 && schedule.month <= 12;
    return isValid ? std::optional(schedule) : std::nullopt;
}

// The task that the words describe, or what is wrong with them.
Result<BackupTask> taskFrom(const ParsedCommand &command)
{
    BackupTask task;
    task.sourcePath = command.arguments.value(0);
    task.destPath = command.arguments.value(1);
    task.name = command.options.value(u"--name"_s);
    const QString kind = command.options.value(u"--kind"_s, u"backup"_s);
    if (kind != "backup"_L1 && kind != "sync"_L1)
        return failure(u"--kind 是 backup 或 sync"_s);
    task.kind = kind == "sync"_L1 ? BackupTaskKind::sync : BackupTaskKind::backup;
    int schedules = 0;
    for (const QString &option : {u"--daily"_s, u"--monthly"_s, u"--yearly"_s}) {
        if (!command.options.contains(option))
            continue;
        const auto schedule = scheduleFrom(option, command.options.value(option));
        if (!schedule || ++schedules > 1)
            return failure(u"时间写作 --daily 时:分、--monthly 日@时:分 或 --yearly 月-日@时:分，三者选一"_s);
        task.schedule = *schedule;
    }
    if (command.options.contains(u"--keep"_s)) {
        bool isNumber = false;
        task.keepLast = command.options.value(u"--keep"_s).toInt(&isNumber);
        if (!isNumber || task.keepLast < 0)
            return failure(u"--keep 是要保留的归档数，0 表示全部"_s);
        if (task.kind == BackupTaskKind::sync)
            return failure(u"--keep 只用于压缩备份；同步没有归档"_s);
    }
    task.excludes = command.options.value(u"--exclude"_s).split(u',', Qt::SkipEmptyParts);
    return task;
}

QCoro::Task<CommandReply> add(FileBackupController &backup, ParsedCommand command)
{
    const Result<BackupTask> wanted = taskFrom(command);
    if (!wanted)
        co_return misuse(wanted.error().message);
    const auto saved = co_await backup.save(*wanted);
    if (!saved)
        co_return CommandReply::refusal(saved.error().message);
    co_return CommandReply{exitcode::done, u"已添加：\n"_s + line(*saved, false), described(*saved)};
}

// By id, or by a name that only one task has.
Result<BackupTask> found(const FileBackupController &backup, const QString &word)
{
    if (const auto task = backup.task(word))
        return *task;
    QList<BackupTask> named = backup.tasks();
    named.removeIf([&](const BackupTask &task) { return task.name != word; });
    if (named.isEmpty())
        return failure(u"没有这个备份任务：%1"_s.arg(word));
    if (named.size() > 1)
        return failure(
            u"有 %1 个任务叫「%2」，请改用 backup list 里的编号"_s.arg(QString::number(named.size()), word));
    return named.first();
}

struct DoubtWords {
    BackupDoubt::Kind kind;
    QString key;
    QString text; // of name, lost and existing
};

const DoubtWords &wordsOf(const BackupDoubt &doubt)
{
    static const DoubtWords all[] = {
        {BackupDoubt::Kind::deletions, u"deletions"_s,
         u"「%1」会删除同步文件夹里 %2 个文件（共 %3 个），没有同步。"_s},
        {BackupDoubt::Kind::foreignMirror, u"foreignMirror"_s,
         u"「%1」的同步文件夹不是这个任务建立的，会覆盖里面的同名文件，删除 %2 个文件（共 %3 个），没有同步。"_s},
        {BackupDoubt::Kind::shrunkSource, u"shrunkSource"_s,
         u"「%1」的源文件夹比上一个完整归档少了 %2 个文件（共 %3 个），没有压缩；继续的话，新归档会计入保留份数。"_s},
    };
    return *std::ranges::find(all, doubt.kind, &DoubtWords::kind);
}

CommandReply replyTo(const BackupQuestion &question)
{
    const BackupDoubt &doubt = question.doubt;
    const DoubtWords &words = wordsOf(doubt);
    return CommandReply::question(
        words.text.arg(oneLine(question.name), QString::number(doubt.lost), QString::number(doubt.existing)),
        {question.taskId},
        {{u"id"_s, question.taskId},
         {u"doubt"_s, words.key},
         {u"deletions"_s, doubt.lost},
         {u"existing"_s, doubt.existing}},
        words.key + u' ' + QString::number(doubt.lost));
}

// To fewer than were agreed to, of the same kind, the user has agreed as well.
bool isAgreed(const ParsedCommand &command, const BackupDoubt &doubt)
{
    const QStringList agreed = command.terms.split(u' ');
    return command.has(confirmOption) &&
           (command.terms.isEmpty() ||
            (agreed.first() == wordsOf(doubt).key && doubt.lost <= agreed.last().toLongLong()));
}

QCoro::Task<CommandReply> run(FileBackupController &backup, ParsedCommand command)
{
    const Result<BackupTask> wanted = found(backup, command.arguments.value(0));
    if (!wanted)
        co_return CommandReply::refusal(wanted.error().message);
    if (backup.isRunningBackup())
        co_return CommandReply::refusal(u"另一个备份任务正在运行"_s);
    const QString id = wanted->id;
    std::optional<BackupQuestion> refused;
    backup.runNow(id);
    while (backup.currentRunningTaskID() == id) {
        if (const auto question = backup.question()) {
            if (isAgreed(command, question->doubt)) {
                backup.confirm();
            } else {
                refused = question;
                backup.decline();
            }
        }
        co_await nextSignal(backup, &FileBackupController::questionChanged,
                            &FileBackupController::runFinished);
    }
    if (refused)
        co_return replyTo(*refused);
    const auto ended = backup.task(id);
    if (!ended)
        co_return CommandReply::refusal(u"任务已被删除"_s);
    co_return CommandReply{ended->hasSucceeded() ? exitcode::done : exitcode::refused,
                           ended->lastResult.value_or(QString()), described(*ended)};
}

QCoro::Task<CommandReply> remove(FileBackupController &backup, ParsedCommand command)
{
    const Result<BackupTask> wanted = found(backup, command.arguments.value(0));
    if (!wanted)
        co_return CommandReply::refusal(wanted.error().message);
    if (!command.options.contains(confirmOption))
        co_return CommandReply::question(u"要删除任务「%1」吗？文件都会保留。"_s.arg(oneLine(wanted->name)),
                                         {wanted->id}, {{u"id"_s, wanted->id}});
    backup.remove(wanted->id);
    co_return CommandReply{exitcode::done,
                           u"已删除任务「%1」，文件都保留着"_s.arg(oneLine(wanted->name)),
                           {{u"id"_s, wanted->id}}};
}

CommandHandler of(QCoro::Task<CommandReply> (*act)(FileBackupController &, ParsedCommand))
{
    return [act](AppServices &services, ParsedCommand command) {
        return act(services.fileBackup, std::move(command));
    };
}

QList<Command> commands()
{
    return {
        {{.words = u"backup list"_s, .help = u"列出备份任务"_s},
         [](AppServices &services, const ParsedCommand &) { return list(services.fileBackup); }},
        {{.words = u"backup add"_s,
          .arguments = u"源文件夹 保存目录"_s,
          .least = 2,
          .most = 2,
          .help = u"添加备份任务；时间为 时:分、日@时:分、月-日@时:分；几个模式用逗号隔开"_s,
          .takesPath = true,
          .options = {{u"--kind"_s, u"backup|sync"_s},
                      {u"--name"_s, u"名称"_s},
                      {u"--daily"_s, u"时间"_s},
                      {u"--monthly"_s, u"时间"_s},
                      {u"--yearly"_s, u"时间"_s},
                      {u"--keep"_s, u"份数"_s},
                      {u"--exclude"_s, u"模式"_s}}},
         of(add)},
        {{.words = u"backup run"_s,
          .arguments = u"任务"_s,
          .least = 1,
          .most = 1,
          .help = u"立即运行任务并等待结果"_s,
          .options = {{confirmOption, {}}},
          .stopsWithClient = true},
         of(run)},
        {{.words = u"backup remove"_s,
          .arguments = u"任务"_s,
          .least = 1,
          .most = 1,
          .help = u"删除任务；已备份的文件保留"_s,
          .options = {{confirmOption, {}}}},
         of(remove)},
    };
}

} // namespace

Tool backupTool()
{
    return {
        .identifier = u"backup"_s,
        .title = u"文件备份"_s,
        .symbol = u"externaldrive.badge.timemachine"_s,
        .group = u"维护"_s,
        .commands = commands(),
        .job = [](AppServices &services) { return &services.fileBackup.job(); },
        .shutDown = [](AppServices &services) { services.fileBackup.shutDown(); },
    };
}

} // namespace velbrix
