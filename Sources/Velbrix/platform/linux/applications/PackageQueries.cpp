#include "platform/linux/applications/PackageQueries.h"

#include <QFile>
#include <QRegularExpression>

using namespace Qt::StringLiterals;
using namespace std::chrono_literals;

namespace velbrix {
namespace {

constexpr qsizetype bytesAtOnce = 512 << 10; // well below what one program takes

// Owners are looked up by exact path; in some managers these are patterns.
bool canBeAsked(const QString &path)
{
    static const QRegularExpression special(u"[*?\\[\\]\\\\\\x00-\\x1f]"_s);
    return !path.contains(special);
}

QList<QStringList> portions(const QStringList &words)
{
    QList<QStringList> parts;
    qsizetype bytes = bytesAtOnce;
    for (const QString &word : words) {
        const qsizetype more = QFile::encodeName(word).size() + 16;
        if (bytes + more > bytesAtOnce) {
            parts.append(QStringList());
            bytes = 0;
        }
        bytes += more;
        parts.last().append(word);
    }
    return parts;
}

} // namespace

ProcessRequest hostCommand(const QStringList &command)
{
    ProcessRequest request;
    request.program = command.value(0);
    request.arguments = command.mid(1);
    request.environment = {{u"LC_ALL"_s, u"C.UTF-8"_s}, {u"LANGUAGE"_s, u"en"_s}};
    return request;
}

QString lastLine(const ProcessOutcome &outcome)
{
    const QByteArray said = outcome.errorOutput.trimmed();
    const QByteArray text = said.isEmpty() ? outcome.output.trimmed() : said;
    return QString::fromUtf8(text.mid(text.lastIndexOf('\n') + 1)).simplified().left(300);
}

QCoro::Task<Result<QHash<QString, QString>>> packageOwners(Clock &clock, PackageManager manager,
                                                           QStringList paths)
{
    ProcessRunner runner(clock);
    QHash<QString, QString> owners;
    paths.removeIf([](const QString &path) { return !canBeAsked(path); });
    const QList<QStringList> parts = portions(paths);
    for (const QStringList &part : parts) {
        ProcessRequest request = hostCommand(manager.ownerQuery + part);
        request.timeout = 20s;
        request.outputLimit = 64 << 20;
        const auto outcome = co_await runner.run(request);
        if (!outcome)
            co_return std::unexpected(outcome.error());
        // Exits with an error as soon as one path has no owner.
        if (outcome->crashed || outcome->timedOut)
            co_return failure(manager.name + u" 没有回答文件属于哪个软件包"_s);
        owners.insert(manager.owners(outcome->output));
    }
    co_return owners;
}

QCoro::Task<QHash<QString, PackageFacts>> packageFacts(Clock &clock, PackageManager manager,
                                                       QStringList packages)
{
    ProcessRunner runner(clock);
    QHash<QString, PackageFacts> facts;
    packages.removeIf([](const QString &package) { return !isPackageName(package); });
    const QList<QStringList> parts = portions(packages);
    for (const QStringList &part : parts) {
        ProcessRequest request = hostCommand(manager.factsQuery + part);
        request.timeout = 20s;
        request.outputLimit = 16 << 20;
        const auto outcome = co_await runner.run(request);
        if (outcome && !outcome->crashed && !outcome->timedOut)
            facts.insert(manager.facts(outcome->output));
    }
    co_return facts;
}

} // namespace velbrix
