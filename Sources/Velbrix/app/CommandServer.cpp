#include "app/CommandServer.h"

#include "app/AppServices.h"
#include "app/Tools.h"
#include "foundation/Job.h"

#include <QJsonArray>
#include <QPointer>

#include <cmath>
#include <memory>
#include <utility>

using namespace Qt::StringLiterals;

namespace velbrix {
namespace {

QJsonObject progressOf(const Job &job)
{
    const Job::State state = job.state();
    if (state.what.isEmpty())
        return {};
    QJsonObject progress = {{u"what"_s, state.what}};
    if (state.progress >= 0) // in steps that can be seen
        progress[u"share"_s] = std::floor(state.progress * 100) / 100;
    return progress;
}

// Says how the job gets on, until the listener goes.
void follow(const Job &job, QObject *listener, const LocalChannelServer::Progress &progress)
{
    QObject::connect(&job, &Job::changed, listener, [&job, said = QJsonObject(), progress]() mutable {
        const QJsonObject now = progressOf(job);
        if (now.isEmpty() || now == said)
            return;
        said = now;
        progress(now);
    });
}

// Cancels what the command has begun, and what it may still begin, as long as
// the listener lives. A job that somebody else is at is theirs.
Observation stopWith(Cancellation work, Job &job, QObject *listener)
{
    if (job.isBusy())
        return Observation();
    return work.onCancel([&job, listener] {
        QObject::connect(&job, &Job::started, listener, [&job] { job.cancel(); }, Qt::QueuedConnection);
        job.cancel();
    });
}

} // namespace

CommandServer::CommandServer(AppServices &services, QObject *parent)
    : QObject(parent),
      _services(services),
      _channel([this](const QJsonObject &request, LocalChannelServer::Progress progress,
                      Cancellation work) { return answer(request, std::move(progress), std::move(work)); },
               services.clock)
{
    connect(&_channel, &LocalChannelServer::answered, this, &CommandServer::answered);
}

Result<void> CommandServer::listen()
{
    const auto endpoint = controlEndpoint();
    if (!endpoint)
        return failure(endpoint.error().message);
    return _channel.listen(*endpoint);
}

QCoro::Task<QJsonObject> CommandServer::answer(QJsonObject request, LocalChannelServer::Progress progress,
                                               Cancellation work)
{
    const ParsedCommand command = parsedCommandFromJson(request);
    // Not only our own client can write to the endpoint.
    if (!isValid(command))
        co_return toJson(CommandReply{exitcode::usage, u"无法识别的命令"_s, {}});
    // To quit once more does no harm.
    if (_services.quit.isEnding() && command.words != u"quit")
        co_return toJson(CommandReply::refusal(u"Velbrix 正在退出，没有执行"_s));
    const Command *const verb = commandOf(command.words);
    QObject listener;
    Observation stopping;
    if (Job *const job = jobBehind(*verb, _services)) {
        follow(*job, &listener, progress);
        if (verb->form.stopsWithClient)
            stopping = stopWith(work, *job, &listener);
    }
    const QPointer self(this);
    const quint64 changes = _services.settings.changes();
    const CommandReply reply = co_await verb->run(_services, command);
    // What a command says it has done is to outlive a crash.
    if (self && reply.exitCode == exitcode::done && _services.settings.changes() != changes) {
        if (const auto saved = _services.settings.flush(); !saved)
            co_return toJson(
                CommandReply::refusal(u"已生效，但没有存盘，稍后会再试：%1"_s.arg(saved.error().message)));
    }
    co_return toJson(reply);
}

QJsonObject toJson(const ParsedCommand &command)
{
    QJsonObject options;
    for (auto option = command.options.begin(); option != command.options.end(); ++option)
        options.insert(option.key(), option.value());
    return {{u"words"_s, command.words},
            {u"arguments"_s, QJsonArray::fromStringList(command.arguments)},
            {u"options"_s, options},
            {u"terms"_s, command.terms}};
}

ParsedCommand parsedCommandFromJson(const QJsonObject &json)
{
    ParsedCommand command;
    command.words = json.value(u"words"_s).toString();
    for (const auto &argument : json.value(u"arguments"_s).toArray())
        command.arguments.append(argument.toString());
    const QJsonObject options = json.value(u"options"_s).toObject();
    for (auto option = options.begin(); option != options.end(); ++option)
        command.options.insert(option.key(), option.value().toString());
    command.terms = json.value(u"terms"_s).toString();
    return command;
}

QJsonObject toJson(const CommandReply &reply)
{
    return {{u"exitCode"_s, reply.exitCode}, {u"text"_s, reply.text}, {u"data"_s, reply.data}};
}

CommandReply commandReplyFromJson(const QJsonObject &json)
{
    return {json.value(u"exitCode"_s).toInt(exitcode::refused), json.value(u"text"_s).toString(),
            json.value(u"data"_s).toObject()};
}

} // namespace velbrix
