#include "app/AppServices.h"
#include "app/Tool.h"
#include "foundation/Awaitables.h"
#include "foundation/Text.h"

#include <QCryptographicHash>
#include <QJsonArray>

#include <memory>

using namespace Qt::StringLiterals;

namespace velbrix {
namespace {

QString word(InstalledApplication::Kind kind)
{
    switch (kind) {
    case InstalledApplication::Kind::bundle:
        return u"bundle"_s;
    case InstalledApplication::Kind::desktopEntry:
        return u"desktopEntry"_s;
    case InstalledApplication::Kind::appImage:
        return u"appImage"_s;
    case InstalledApplication::Kind::managed:
        return u"managed"_s;
    }
    Q_UNREACHABLE();
}

QString word(MatchReason reason)
{
    switch (reason) {
    case MatchReason::application:
        return u"application"_s;
    case MatchReason::companion:
        return u"companion"_s;
    case MatchReason::identifier:
        return u"identifier"_s;
    case MatchReason::vendorPrefix:
        return u"vendorPrefix"_s;
    case MatchReason::name:
        return u"name"_s;
    }
    Q_UNREACHABLE();
}

QString word(UninstallMode mode)
{
    switch (mode) {
    case UninstallMode::full:
        return u"full"_s;
    case UninstallMode::appOnly:
        return u"app"_s;
    case UninstallMode::custom:
        return u"custom"_s;
    }
    Q_UNREACHABLE();
}

// Nothing when there is no such mode.
std::optional<UninstallMode> modeFor(const QString &name)
{
    for (const UninstallMode mode : allUninstallModes) {
        if (word(mode) == name)
            return mode;
    }
    return std::nullopt;
}

QJsonObject toJson(const AppInfo &app)
{
    return {{u"name"_s, app.name},
            {u"identifier"_s, app.bundleID},
            {u"version"_s, app.version},
            {u"bytes"_s, app.size},
            {u"path"_s, app.path},
            {u"kind"_s, word(app.source.kind)},
            {u"manager"_s, app.source.manager},
            {u"package"_s, app.source.package}};
}

QString lineOf(const AppInfo &app)
{
    QStringList parts = {oneLine(app.name), oneLine(app.version), formatByteCount(app.size)};
    if (!app.source.manager.isEmpty())
        parts << app.source.manager;
    parts << (app.bundleID.isEmpty() ? u"（无标识）"_s : oneLine(app.bundleID)) << oneLine(app.path);
    return parts.join(u"  "_s);
}

QString linesOf(const QList<AppInfo> &apps)
{
    QStringList lines;
    for (const AppInfo &app : apps)
        lines << lineOf(app);
    return lines.join(u'\n');
}

QJsonObject toJson(const UninstallReview &review)
{
    QJsonArray items;
    for (const ReviewItem &item : review.items) {
        items.append(QJsonObject{{u"path"_s, item.path},
                                 {u"bytes"_s, item.bytes.value_or(0)},
                                 {u"reason"_s, word(item.reason)},
                                 {u"why"_s, item.why},
                                 {u"caution"_s, item.caution},
                                 {u"ticked"_s, item.isTicked}});
    }
    return {{u"app"_s, toJson(review.app)},
            {u"mode"_s, word(review.mode)},
            {u"running"_s, review.isRunning},
            {u"packages"_s, QJsonArray::fromStringList(review.packages)},
            {u"items"_s, items}};
}

QString textOf(const UninstallReview &review)
{
    QStringList lines = {u"卸载「%1」（%2）："_s.arg(oneLine(review.app.name), rawValue(review.mode))};
    if (review.isRunning)
        lines << u"  应用正在运行，请先退出"_s;
    if (!review.packages.isEmpty())
        lines << u"  会移除的软件包："_s + review.packages.join(u"、"_s);
    for (const ReviewItem &item : review.items) {
        QStringList parts = {item.isTicked ? u"  [✓]"_s : u"  [ ]"_s, formatByteCount(item.bytes.value_or(0)),
                             oneLine(item.path), item.why};
        if (!item.caution.isEmpty())
            parts << item.caution;
        lines << parts.join(u"  "_s);
    }
    return lines.join(u'\n');
}

// Fresh: what is listed may be gone and what is missing may be there by now.
QCoro::Task<> scanned(AppScanner &scanner)
{
    if (!scanner.isScanning())
        scanner.scan();
    while (scanner.isScanning())
        co_await nextSignal(scanner, &AppScanner::isScanningChanged);
}

QCoro::Task<CommandReply> list(AppScanner &scanner)
{
    co_await scanned(scanner);
    if (!scanner.scanProblem().isEmpty())
        co_return CommandReply::refusal(scanner.scanProblem());
    QJsonArray apps;
    for (const AppInfo &app : scanner.apps())
        apps.append(toJson(app));
    CommandReply reply;
    reply.text = apps.isEmpty() ? u"没有找到应用"_s : linesOf(scanner.apps());
    reply.data = {{u"apps"_s, apps}};
    co_return reply;
}

QList<AppInfo> called(const QList<AppInfo> &apps, const QString &name)
{
    QList<AppInfo> matching = apps;
    matching.removeIf([&](const AppInfo &app) {
        return name.isEmpty() || (app.name.compare(name, Qt::CaseInsensitive) != 0 &&
                                  app.bundleID.compare(name, Qt::CaseInsensitive) != 0 && app.path != name);
    });
    return matching;
}

CommandReply outcome(const AppScanner &scanner, const AppInfo &app, const QString &message)
{
    CommandReply reply;
    const bool isDone = scanner.progressStage().kind != UninstallStage::Kind::failed;
    reply.exitCode = isDone ? exitcode::done : exitcode::refused;
    QStringList lines = {message};
    QJsonArray failures;
    for (const FailedItem &item : scanner.failures()) {
        lines << u"  %1：%2"_s.arg(oneLine(item.path), item.reason);
        failures.append(QJsonObject{{u"path"_s, item.path}, {u"reason"_s, item.reason}});
    }
    reply.text = lines.join(u'\n');
    reply.data = {{u"uninstalled"_s, isDone}, {u"app"_s, toJson(app)}, {u"failures"_s, failures}};
    return reply;
}

QCoro::Task<CommandReply> carryOut(AppScanner &scanner, UninstallReview review)
{
    const auto message = std::make_shared<QString>();
    const auto listening = QObject::connect(&scanner, &AppScanner::finished, &scanner,
                                            [message](const QString &text) { *message = text; });
    scanner.uninstall(review);
    while (scanner.isBusy())
        co_await nextSignal(scanner, &AppScanner::finished);
    QObject::disconnect(listening);
    co_return outcome(scanner, review.app, *message);
}

// Why nothing can be uninstalled now; empty when it can. Agreeing in the
// window starts nothing: it may come long after.
QString hindrance(const AppScanner &scanner, PrivacyManager &privacy)
{
    if (scanner.isBusy() || scanner.isPuttingBack())
        return u"另一个卸载或放回操作正在进行"_s;
    privacy.guard(featurePrivacyNotice(PrivacyConsentKind::uninstall), [] {});
    return privacy.missingConsent(PrivacyConsentKind::uninstall);
}

// What goes, whatever it measures by now.
QString termsOf(const UninstallReview &review)
{
    QCryptographicHash terms(QCryptographicHash::Sha256);
    const auto add = [&](const QString &what) { terms.addData(what.toUtf8().append('\0')); };
    add(review.app.path);
    for (const ReviewItem &item : review.items) {
        if (item.isTicked)
            add(item.path);
    }
    for (const QString &package : review.packages)
        add(package);
    return QString::fromLatin1(terms.result().toHex());
}

QCoro::Task<CommandReply> uninstall(AppScanner &scanner, PrivacyManager &privacy, ParsedCommand command)
{
    const std::optional<UninstallMode> mode = command.options.contains(u"--mode"_s)
                                                  ? modeFor(command.options.value(u"--mode"_s))
                                                  : std::optional(scanner.uninstallMode());
    if (!mode)
        co_return CommandReply{exitcode::usage, u"--mode 只能是 full、app 或 custom"_s, {}};
    const bool isDryRun = command.options.contains(u"--dry-run"_s);
    if (const QString reason = isDryRun ? QString() : hindrance(scanner, privacy); !reason.isEmpty())
        co_return CommandReply::refusal(reason);
    co_await scanned(scanner);
    if (!scanner.scanProblem().isEmpty())
        co_return CommandReply::refusal(scanner.scanProblem());
    const QString name = command.arguments.value(0);
    const QList<AppInfo> matching = called(scanner.apps(), name);
    if (matching.isEmpty())
        co_return CommandReply::refusal(u"找不到应用："_s + name);
    if (matching.size() > 1)
        co_return CommandReply::refusal(
            u"有多个应用符合「%1」，请用标识或路径指定：\n%2"_s.arg(name, linesOf(matching)));
    const AppInfo &app = matching.first();
    const UninstallReview review = co_await scanner.reviewOf(app, *mode);
    if (isDryRun)
        co_return CommandReply{exitcode::done, textOf(review), {{u"review"_s, toJson(review)}}};
    if (review.isRunning)
        co_return CommandReply::refusal(u"应用正在运行，请先退出："_s + oneLine(app.name));
    const QString terms = termsOf(review);
    const bool hasChanged = !command.terms.isEmpty() && command.terms != terms;
    if (!command.has(u"--yes"_s) || hasChanged)
        co_return CommandReply::question((hasChanged ? u"与刚才列出的不同，现在是：\n"_s : QString()) +
                                             textOf(review),
                                         {app.path}, {{u"review"_s, toJson(review)}}, terms);
    if (const QString reason = hindrance(scanner, privacy); !reason.isEmpty())
        co_return CommandReply::refusal(reason);
    const CommandReply reply = co_await carryOut(scanner, review);
    co_return reply;
}

QList<Command> commands()
{
    return {
        {{.words = u"apps list"_s, .help = u"列出已安装的应用"_s},
         [](AppServices &services, const ParsedCommand &) { return list(services.uninstaller); }},
        {{.words = u"apps uninstall"_s,
          .arguments = u"应用"_s,
          .least = 1,
          .most = 1,
          .help = u"卸载应用；--dry-run 只显示将被移走的内容"_s,
          .options = {{u"--mode"_s, u"full|app|custom"_s}, {u"--dry-run"_s, {}}, {u"--yes"_s, {}}},
          .stopsWithClient = true},
         [](AppServices &services, ParsedCommand command) {
             return uninstall(services.uninstaller, services.privacy, std::move(command));
         }},
    };
}

FeaturePrivacyNotice consent()
{
    return privacyNotice(
        PrivacyConsentKind::uninstall, u"xmark.circle.fill"_s, NoticeTint::red, u"应用卸载隐私确认"_s,
        u"卸载会访问应用安装路径及你选择的关联数据位置，并将文件移入废纸篓。"_s,
        {u"仅处理你确认卸载的应用及其关联数据"_s, u"不会上传应用数据"_s, u"可在废纸篓中找回（在清空前）"_s});
}

} // namespace

Tool appsTool()
{
    return {
        .identifier = u"apps"_s,
        .title = u"应用卸载"_s,
        .symbol = u"xmark.bin"_s,
        .group = u"维护"_s,
        .commands = commands(),
        .notices = {consent()},
        .job = [](AppServices &services) { return &services.uninstaller.job(); },
    };
}

} // namespace velbrix
