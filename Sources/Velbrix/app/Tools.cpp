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
        QList<Command> ofTools, ofProgram;
        for (const Tool &tool : tools())
            (tool.group.isEmpty() ? ofProgram : ofTools) += tool.commands;
        return ofProgram + ofTools;
    }();
    return all;
}

const Command *commandOf(const QString &words)
{
    const auto found =
        std::ranges::find(commands(), words, [](const Command &command) { return command.form.words; });
    return found == commands().end() ? nullptr : &*found;
}

Job *jobOf(const Tool &tool, AppServices &services)
{
    return tool.job ? tool.job(services) : nullptr;
}

Job *jobBehind(const Command &command, AppServices &services)
{
    const auto owns = [&](const Tool &tool) {
        return std::ranges::any_of(
            tool.commands, [&](const Command &each) { return each.form.words == command.form.words; });
    };
    const auto owner = std::ranges::find_if(tools(), owns);
    return owner == tools().end() ? nullptr : jobOf(*owner, services);
}

QList<Job *> allJobs(AppServices &services)
{
    QList<Job *> all;
    for (const Tool &tool : tools()) {
        if (Job *const job = jobOf(tool, services))
            all.append(job);
    }
    return all;
}

} // namespace velbrix
