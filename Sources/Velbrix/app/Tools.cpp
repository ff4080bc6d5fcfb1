#include "app/Tools.h"

#include <algorithm>

namespace velbrix {

// Each in a file of its own in tools/.
Tool wallpaperTool();
Tool recorderTool();
Tool cleanTool();
Tool appsTool();
Tool backupTool();
Tool settingsTool(const QList<Tool> &others);

const QList<Tool> &tools()
{
    static const QList<Tool> all = [] {
        QList<Tool> made = {
            wallpaperTool(), recorderTool(), cleanTool(), appsTool(), backupTool(),
        };
        return made << settingsTool(made);
    }();
    return all;
}

const Tool *toolCalled(const QString &identifier)
{
    const auto found = std::ranges::find(tools(), identifier, &Tool::identifier);
    return found == tools().end() ? nullptr : &*found;
}

const QList<Command> &commands()
{
    static const QList<Command> all = [] {
        QList<Command> found;
        for (const Tool &tool : tools())
            found += tool.commands;
        return found;
    }();
    return all;
}

const Command *commandOf(const QString &words)
{
    const auto found =
        std::ranges::find(commands(), words, [](const Command &command) { return command.form.words; });
    return found == commands().end() ? nullptr : &*found;
}

QList<Job *> jobsBehind(const Command &command, AppServices &services)
{
    const auto has = [&](const Tool &tool) {
        return std::ranges::any_of(
            tool.commands, [&](const Command &each) { return each.form.words == command.form.words; });
    };
    const auto owner = std::ranges::find_if(tools(), has);
    return owner == tools().end() ? QList<Job *>() : jobsOf(*owner, services);
}

QList<Job *> jobsOf(const Tool &tool, AppServices &services)
{
    return tool.jobs ? tool.jobs(services) : QList<Job *>();
}

QList<Job *> allJobs(AppServices &services)
{
    QList<Job *> all;
    for (const Tool &tool : tools())
        all += jobsOf(tool, services);
    return all;
}

} // namespace velbrix
