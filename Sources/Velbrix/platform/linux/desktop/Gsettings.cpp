#include "platform/linux/desktop/Gsettings.h"

#include "foundation/Log.h"

#include <QStandardPaths>

using namespace Qt::StringLiterals;
using namespace std::chrono_literals;

namespace velbrix {

Gsettings::Gsettings(Clock &clock, QString schema, QString folder)
    : _programs(clock), _schema(std::move(schema)), _folder(std::move(folder))
{
}

QCoro::Task<Result<QString>> Gsettings::run(const QString command, const QStringList arguments)
{
    const QString program = QStandardPaths::findExecutable(u"gsettings"_s);
    if (program.isEmpty())
        co_return failure(u"没有找到 gsettings"_s);
    ProcessRequest request;
    request.program = program;
    if (!_folder.isEmpty())
        request.arguments = {u"--schemadir"_s, _folder};
    request.arguments += QStringList{command, _schema} + arguments;
    request.timeout = 5s;
    const auto outcome = co_await _programs.run(request);
    if (!outcome)
        co_return std::unexpected(outcome.error());
    if (!outcome->succeeded()) {
        log::line(u"Wallpaper"_s, u"gsettings: "_s + QString::fromUtf8(outcome->errorOutput).trimmed());
        co_return failure(u"gsettings 没有成功"_s);
    }
    co_return QString::fromUtf8(outcome->output).trimmed();
}

QCoro::Task<Result<QStringList>> Gsettings::keys()
{
    const QStringList none;
    const auto listed = co_await run(u"list-keys"_s, none);
    const QStringList keys = listed ? listed->split(u'\n', Qt::SkipEmptyParts) : QStringList();
    co_return keys;
}

QCoro::Task<Result<QJsonObject>> Gsettings::values()
{
    const QStringList none;
    const auto listed = co_await run(u"list-recursively"_s, none);
    QJsonObject found;
    const QStringList lines = listed.value_or(QString()).split(u'\n', Qt::SkipEmptyParts);
    for (const QString &line : lines) {
        if (line.section(u' ', 0, 0) == _schema)
            found.insert(line.section(u' ', 1, 1), line.section(u' ', 2));
    }
    co_return found;
}

QCoro::Task<Result<QString>> Gsettings::value(const QString key)
{
    return run(u"get"_s, {key});
}

QCoro::Task<Result<void>> Gsettings::set(const QString key, const QString value)
{
    const QStringList assignment{key, value};
    const auto done = co_await run(u"set"_s, assignment);
    if (!done)
        co_return std::unexpected(done.error());
    co_return Result<void>();
}

QCoro::Task<Result<QJsonObject>> Gsettings::values(const QStringList keys)
{
    QJsonObject found;
    for (const QString &key : keys) {
        const auto text = co_await value(key);
        if (!text)
            co_return std::unexpected(text.error());
        found.insert(key, *text);
    }
    co_return found;
}

QCoro::Task<Result<void>> Gsettings::set(const QJsonObject values)
{
    for (auto each = values.begin(); each != values.end(); ++each) {
        if (const auto done = co_await set(each.key(), each->toString()); !done)
            co_return std::unexpected(done.error());
    }
    co_return Result<void>();
}

QCoro::Task<Result<void>> Gsettings::reset(const QString key)
{
    const QStringList arguments{key};
    const auto done = co_await run(u"reset"_s, arguments);
    if (!done)
        co_return std::unexpected(done.error());
    co_return Result<void>();
}

QString Gsettings::unquoted(const QString &value)
{
    if (value.size() < 2)
        return value;
    QString text;
    for (qsizetype i = 1; i < value.size() - 1; ++i) {
        if (value[i] == u'\\')
            ++i;
        text += value[i];
    }
    return text;
}

QString Gsettings::quoted(QString text)
{
    return u'\'' + text.replace(u'\\', u"\\\\"_s).replace(u'\'', u"\\'"_s) + u'\'';
}

} // namespace velbrix
