#include "app/AppServices.h"
#include "app/Tool.h"
#include "foundation/Awaitables.h"
#include "foundation/Paths.h"
#include "foundation/Text.h"

#include <QCoroTask>
#include <QDir>
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

QString line(const SystemCleaner &cleaner, const CleanupItem &item, const QString &size)
{
    QStringList marks;
    if (cleaner.isAdministrative(item.id))
        marks << u"需要管理员权限"_s;
    if (cleaner.busyItems().contains(item.id))
        marks << u"正在运行"_s;
    const QString note = marks.isEmpty() ? QString() : u"  （%1）"_s.arg(marks.join(u"，"_s));
    return u"%1 %2  %3  %4%5"_s.arg(item.isSelected ? u"[x]"_s : u"[ ]"_s, item.id, oneLine(item.name), size,
                                    note);
}

QCoro::Task<CommandReply> list(SystemCleaner &cleaner)
{
    co_await measured(cleaner);
    QStringList lines;
    QJsonArray items;
    for (const CleanupItem &item : cleaner.items()) {
        lines << line(cleaner, item, item.estimatedSize);
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

QStringList linesOf(const CleanupContents &contents)
{
    QStringList going, staying;
    for (const CleanupEntry &entry : contents.entries) {
        const QString path = oneLine(shortenedPath(QFile::decodeName(entry.path), QDir::homePath()));
        if (entry.goes())
            going << u"    %1  %2"_s.arg(formatByteCount(entry.bytes.value_or(0)), path);
        else
            staying << u"    保留 %1：%2"_s.arg(path, entry.isIncluded ? entry.whyStays : u"已排除"_s);
    }
    QStringList lines;
    if (!contents.problem.isEmpty())
        lines << u"    "_s + contents.problem;
    for (const QStringList &kind : {going, staying}) {
        lines << kind.first(std::min<qsizetype>(entriesShown, kind.size()));
        if (kind.size() > entriesShown)
            lines << u"    …… 共 %1 项"_s.arg(kind.size());
    }
    if (!contents.note.isEmpty())
        lines << u"    "_s + contents.note;
    return lines;
}

QJsonArray toJson(const QList<CleanupEntry> &entries)
{
    QJsonArray all;
    for (const CleanupEntry &entry : entries) {
        QJsonObject json = {{u"path"_s, QFile::decodeName(entry.path)},
                            {u"bytes"_s, entry.bytes.value_or(0)},
                            {u"included"_s, entry.goes()}};
        if (!entry.goes())
            json[u"stays"_s] = entry.isIncluded ? entry.whyStays : u"已排除"_s;
        all.append(json);
    }
    return all;
}

// What one item would give back; nothing when nobody knows before.
std::optional<qint64> bytesOf(const SystemCleaner &cleaner, const CleanupItem &item,
                              const CleanupContents &contents)
{
    if (!cleaner.details().canOpen(item.id))
        return cleaner.bytesToGo(item.id) > 0 ? std::optional(cleaner.bytesToGo(item.id)) : std::nullopt;
    qint64 bytes = 0;
    for (const CleanupEntry &entry : contents.entries)
        bytes += entry.goes() ? entry.bytes.value_or(0) : 0;
    return bytes;
}

QCoro::Task<CommandReply> preview(SystemCleaner &cleaner, QStringList ids)
{
    if (const QString reason = unknownIds(cleaner, ids); !reason.isEmpty())
        co_return CommandReply::refusal(reason);
    co_await measured(cleaner);
    QStringList lines, empty;
    QJsonArray items;
    for (const CleanupItem &item : cleaner.itemsToClean(ids)) {
        const CleanupContents contents = co_await cleaner.details().look(item.id, ids);
        const auto bytes = bytesOf(cleaner, item, contents);
        QJsonObject json = toJson(cleaner, item);
        json[u"entries"_s] = toJson(contents.entries);
        if (bytes)
            json[u"goes"_s] = *bytes;
        items.append(json);
        if (cleaner.details().canOpen(item.id) && linesOf(contents).isEmpty())
            empty << oneLine(item.name);
        else
            lines << line(cleaner, item, bytes ? formatByteCount(*bytes) : u"大小未知"_s)
                  << linesOf(contents);
    }
    if (!empty.isEmpty())
        lines << u"没有可清理的内容：%1"_s.arg(empty.join(u"、"_s));
    const QStringList skipped = cleaner.itemsToSkip(ids) + cleaner.foldersToSkip(ids);
    if (!skipped.isEmpty())
        lines << u"正在运行，将跳过：%1"_s.arg(skipped.join(u"、"_s));
    const CommandReply reply{exitcode::done,
                             lines.isEmpty() ? u"没有选择任何清理项"_s : lines.join(u'\n'),
                             {{u"items"_s, items}, {u"skipped"_s, QJsonArray::fromStringList(skipped)}}};
    co_return reply;
}

CommandReply outcome(const CleanupReport &report)
{
    if (report.outcome.kind == CleanupPhase::Kind::failed)
        return CommandReply::refusal(report.outcome.text);
    QStringList lines = QStringList{resultText(report)} + reportLines(report);
    QJsonArray problems, failed;
    for (const RemovalProblem &problem : report.removal.problems) {
        const QString path = QFile::decodeName(problem.path);
        lines << u"未能移除 %1：%2"_s.arg(oneLine(path), problem.reason);
        problems.append(QJsonObject{{u"path"_s, path}, {u"reason"_s, problem.reason}});
    }
    if (report.removal.problemCount > problems.size())
        lines << u"…… 未能移除的共 %1 项"_s.arg(report.removal.problemCount);
    for (const CleanupNote &note : report.failed)
        failed.append(QJsonObject{{u"name"_s, note.what}, {u"reason"_s, note.why}});
    const bool isComplete = !report.wasCancelled && report.failed.isEmpty();
    return {isComplete ? exitcode::done : exitcode::refused,
            lines.join(u'\n'),
            {{u"count"_s, report.handledCount()},
             {u"bytes"_s, report.outcome.totalBytes},
             {u"freed"_s, report.removal.freedBytes},
             {u"cancelled"_s, report.wasCancelled},
             {u"failed"_s, failed},
             {u"skipped"_s, QJsonArray::fromStringList(report.skipped)},
             {u"problems"_s, problems}}};
}

// Whether a preview shows anything that would go, or may.
bool hasAnything(const QJsonObject &preview)
{
    return std::ranges::any_of(preview[u"items"_s].toArray(), [](const QJsonValue &item) {
        const QJsonArray entries = item[u"entries"_s].toArray();
        return item[u"goes"_s].isUndefined() || item[u"goes"_s].toInteger() > 0 ||
               std::ranges::any_of(entries,
                                   [](const QJsonValue &entry) { return entry[u"included"_s].toBool(); });
    });
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
        if (!hasAnything(shown.data))
            co_return shown;
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
          .options = {{u"--yes"_s, {}}},
          .stopsWithClient = true},
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
