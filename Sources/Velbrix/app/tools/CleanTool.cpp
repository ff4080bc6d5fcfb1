#include "app/AppServices.h"
#include "app/Tool.h"
#include "foundation/Awaitables.h"
#include "foundation/Text.h"

#include <QCoroTask>
#include <QFile>
#include <QJsonArray>

#include <algorithm>

using namespace Qt::StringLiterals;

namespace velbrix {
namespace {

constexpr int entriesShown = 20; // of one item in a preview
constexpr int anyNumber = 1000;  // of items

QCoro::Task<> idle(SystemCleaner &cleaner)
{
    while (cleaner.isWorking())
        co_await nextSignal(cleaner, &SystemCleaner::phaseChanged);
}

QCoro::Task<> measured(SystemCleaner &cleaner)
{
    co_await idle(cleaner);
    cleaner.recalculate();
    co_await idle(cleaner);
}

QJsonObject toJson(const SystemCleaner &cleaner, const CleanupItem &item)
{
    QJsonObject json = {{u"id"_s, item.id},
                        {u"name"_s, item.name},
                        {u"selected"_s, item.isSelected},
                        {u"busy"_s, cleaner.busyItems().contains(item.id)},
                        {u"admin"_s, cleaner.isAdministrative(item.id)}};
    if (const auto bytes = cleaner.measuredBytes(item.id))
        json[u"bytes"_s] = *bytes;
    if (item.customPath)
        json[u"path"_s] = *item.customPath;
    return json;
}

QString line(const SystemCleaner &cleaner, const CleanupItem &item)
{
    QStringList marks;
    if (cleaner.isAdministrative(item.id))
        marks << u"需要管理员权限"_s;
    if (cleaner.busyItems().contains(item.id))
        marks << u"正在运行"_s;
    const QString note = marks.isEmpty() ? QString() : u"  （%1）"_s.arg(marks.join(u"，"_s));
    return u"%1 %2  %3  %4%5"_s.arg(item.isSelected ? u"[x]"_s : u"[ ]"_s, item.id, oneLine(item.name),
                                    item.estimatedSize, note);
}

QCoro::Task<CommandReply> list(SystemCleaner &cleaner)
{
    co_await measured(cleaner);
    QStringList lines;
    QJsonArray items;
    for (const CleanupItem &item : cleaner.items()) {
        lines << line(cleaner, item);
        items.append(toJson(cleaner, item));
    }
    const CommandReply reply{exitcode::done, lines.join(u'\n'), {{u"items"_s, items}}};
    co_return reply;
}

// Why the ids cannot be taken; else empty.
QString unknownIds(const SystemCleaner &cleaner, const QStringList &ids)
{
    const QList<CleanupItem> items = cleaner.items();
    for (const QString &id : ids) {
        if (std::ranges::find(items, id, &CleanupItem::id) == items.end())
            return u"没有这个清理项：%1（见 clean list）"_s.arg(id);
    }
    return {};
}

// What is in one item, the largest first.
QCoro::Task<CleanupContents> contentsOf(SystemCleaner &cleaner, CleanupItem item)
{
    CleanupDetails &details = cleaner.details();
    if (!details.canOpen(item.id))
        co_return CleanupContents();
    const bool wasOpen = details.contents().contains(item.id);
    details.open(item.id);
    while (details.contents().value(item.id).isMeasuring)
        co_await nextSignal(details, &CleanupDetails::contentsChanged);
    const CleanupContents contents = details.contents().value(item.id);
    if (!wasOpen)
        details.close(item.id);
    co_return contents;
}

QStringList linesOf(const CleanupContents &contents)
{
    QStringList lines;
    if (!contents.problem.isEmpty())
        lines << u"    "_s + contents.problem;
    for (const CleanupEntry &entry :
         contents.entries.first(std::min<qsizetype>(entriesShown, contents.entries.size())))
        lines << u"    %1  %2%3"_s.arg(formatByteCount(entry.bytes.value_or(0)), oneLine(entry.name),
                                       entry.isIncluded ? QString() : u"  （保留）"_s);
    if (contents.entries.size() > entriesShown)
        lines << u"    …… 共 %1 项"_s.arg(contents.entries.size());
    return lines;
}

QJsonArray toJson(const QList<CleanupEntry> &entries)
{
    QJsonArray all;
    for (const CleanupEntry &entry : entries)
        all.append(QJsonObject{{u"path"_s, QFile::decodeName(entry.path)},
                               {u"bytes"_s, entry.bytes.value_or(0)},
                               {u"included"_s, entry.isIncluded}});
    return all;
}

QCoro::Task<CommandReply> preview(SystemCleaner &cleaner, QStringList ids)
{
    if (const QString reason = unknownIds(cleaner, ids); !reason.isEmpty())
        co_return CommandReply::refusal(reason);
    co_await measured(cleaner);
    QStringList lines;
    QJsonArray items;
    for (const CleanupItem &item : cleaner.items()) {
        if (ids.isEmpty() ? !item.isSelected : !ids.contains(item.id))
            continue;
        const CleanupContents contents = co_await contentsOf(cleaner, item);
        lines << line(cleaner, item) << linesOf(contents);
        QJsonObject json = toJson(cleaner, item);
        json[u"entries"_s] = toJson(contents.entries);
        items.append(json);
    }
    const CommandReply reply{
        exitcode::done, lines.isEmpty() ? u"没有选择任何清理项"_s : lines.join(u'\n'), {{u"items"_s, items}}};
    co_return reply;
}

CommandReply outcome(const CleanupReport &report)
{
    if (report.outcome.kind == CleanupPhase::Kind::failed)
        return CommandReply::refusal(report.outcome.text);
    const CleanupPhase &done = report.outcome;
    QStringList lines = {resultText(report)};
    if (report.removal.freedBytes > 0 || done.cleanedCount > 0)
        lines << u"实际释放 %1"_s.arg(formatByteCount(report.removal.freedBytes));
    else
        lines << u"没有需要删除的文件"_s;
    if (report.wasCancelled)
        lines << u"余下的没有清理"_s;
    if (!report.skipped.isEmpty())
        lines << u"正在运行，已跳过：%1"_s.arg(report.skipped.join(u"、"_s));
    QJsonArray problems;
    for (const RemovalProblem &problem : report.removal.problems) {
        const QString path = QFile::decodeName(problem.path);
        lines << u"未能移除 %1：%2"_s.arg(oneLine(path), problem.reason);
        problems.append(QJsonObject{{u"path"_s, path}, {u"reason"_s, problem.reason}});
    }
    if (report.removal.problemCount > problems.size())
        lines << u"…… 未能移除的共 %1 项"_s.arg(report.removal.problemCount);
    return {report.wasCancelled ? exitcode::refused : exitcode::done,
            lines.join(u'\n'),
            {{u"count"_s, done.cleanedCount},
             {u"bytes"_s, done.totalBytes},
             {u"freed"_s, report.removal.freedBytes},
             {u"cancelled"_s, report.wasCancelled},
             {u"skipped"_s, QJsonArray::fromStringList(report.skipped)},
             {u"problems"_s, problems}}};
}

// Cleans these items and leaves the user's own selection as it was.
QCoro::Task<CommandReply> run(SystemCleaner &cleaner, PrivacyManager &privacy, ParsedCommand command)
{
    const QStringList ids = command.arguments;
    if (const QString reason = unknownIds(cleaner, ids); !reason.isEmpty())
        co_return CommandReply::refusal(reason);
    if (!command.has(u"--yes"_s)) {
        const CommandReply shown = co_await preview(cleaner, ids);
        if (const QString reason = cleaner.obstacle(ids); !reason.isEmpty())
            co_return CommandReply::refusal(reason);
        QStringList agreed;
        for (const CleanupItem &item : cleaner.itemsToClean(ids))
            agreed << item.id;
        co_return CommandReply::question(u"将清理以下内容，操作不可撤销：\n"_s + shown.text, agreed,
                                         shown.data);
    }
    // In the window the user confirms the notice; the command is said again.
    privacy.guard(featurePrivacyNotice(PrivacyConsentKind::systemCleanup), [] {});
    if (const QString reason = privacy.missingConsent(PrivacyConsentKind::systemCleanup); !reason.isEmpty())
        co_return CommandReply::refusal(reason);
    if (cleaner.isCleaning())
        co_return CommandReply::refusal(u"清理已在进行中"_s);
    cleaner.clean(ids);
    while (cleaner.isCleaning())
        co_await nextSignal(cleaner, &SystemCleaner::phaseChanged);
    co_return outcome(cleaner.report());
}

QList<Command> commands()
{
    return {
        {{.words = u"clean list"_s, .help = u"列出清理项及其大小"_s},
         [](AppServices &services, const ParsedCommand &) { return list(services.cleaner); }},
        {{.words = u"clean preview"_s,
          .arguments = u"清理项"_s,
          .most = anyNumber,
          .help = u"显示将被清理的内容，不做任何改动"_s},
         [](AppServices &services, const ParsedCommand &command) {
             return preview(services.cleaner, command.arguments);
         }},
        {{.words = u"clean run"_s,
          .arguments = u"清理项"_s,
          .most = anyNumber,
          .help = u"清理列出的清理项；没有列出时清理已勾选的"_s,
          .options = {{u"--yes"_s, {}}}},
         [](AppServices &services, ParsedCommand command) {
             return run(services.cleaner, services.privacy, std::move(command));
         }},
    };
}

FeaturePrivacyNotice consent()
{
    return privacyNotice(PrivacyConsentKind::systemCleanup, u"trash"_s, NoticeTint::orange,
                         u"系统清理隐私确认"_s,
                         u"清理会扫描并删除你勾选的缓存/临时文件路径，操作不可撤销。"_s,
                         {u"仅处理你勾选的本地路径"_s, u"不会上传文件内容"_s,
                          u"删除后通常不可恢复（废纸篓策略取决于系统）"_s});
}

} // namespace

Tool cleanTool()
{
    return {
        .identifier = u"clean"_s,
        .title = u"系统清理"_s,
        .symbol = u"sparkles"_s,
        .group = u"维护"_s,
        .commands = commands(),
        .notices = {consent()},
        .job = [](AppServices &services) { return &services.cleaner.job(); },
    };
}

} // namespace velbrix
