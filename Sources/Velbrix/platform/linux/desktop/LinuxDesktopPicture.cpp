#include "platform/linux/desktop/LinuxDesktopPicture.h"

#include "platform/linux/desktop/GsettingsPicture.h"
#include "platform/linux/desktop/PcmanfmPicture.h"
#include "platform/linux/desktop/PlasmaPicture.h"
#include "platform/linux/desktop/RootPicture.h"
#include "platform/linux/desktop/RunningDesktop.h"
#include "platform/linux/desktop/XfcePicture.h"

#include <QCoroFuture>
#include <QtConcurrent/QtConcurrentRun>

#include <memory>
#include <vector>

using namespace Qt::StringLiterals;

namespace velbrix {
namespace {

using Program = RunningDesktop::Program;

const QString rootName = u"root"_s;
const QString pcmanfmName = u"pcmanfm"_s;

// One place that keeps a picture, under its name in what is remembered.
struct Keeper {
    QString name;
    std::unique_ptr<DesktopPicture> picture;
};
using Keepers = std::vector<Keeper>;

QString name(Program program)
{
    switch (program) {
    case Program::Xfce:
        return u"xfce"_s;
    case Program::Pcmanfm:
        return pcmanfmName;
    case Program::Gnome:
        return u"gnome"_s;
    case Program::Cinnamon:
        return u"cinnamon"_s;
    case Program::Mate:
        return u"mate"_s;
    case Program::Plasma:
        return u"plasma"_s;
    case Program::RootWindow:
        break;
    }
    return rootName;
}

// These publish what they show on the root window as well.
bool keepsRootPicture(Program program)
{
    return program == Program::Xfce || program == Program::Pcmanfm || program == Program::Mate;
}

std::unique_ptr<DesktopPicture> makeKeeper(Program program, Clock &clock, const QString &folder,
                                           const QString &profile, bool isRunning)
{
    using Family = GsettingsPicture::Family;
    switch (program) {
    case Program::Xfce:
        return std::make_unique<XfcePicture>(clock);
    case Program::Pcmanfm:
        return std::make_unique<PcmanfmPicture>(clock, profile, isRunning);
    case Program::Gnome:
        return std::make_unique<GsettingsPicture>(clock, Family::Gnome);
    case Program::Cinnamon:
        return std::make_unique<GsettingsPicture>(clock, Family::Cinnamon);
    case Program::Mate:
        return std::make_unique<GsettingsPicture>(clock, Family::Mate);
    case Program::Plasma:
        return std::make_unique<PlasmaPicture>();
    case Program::RootWindow:
        break;
    }
    return std::make_unique<RootPicture>(folder);
}

Keepers keepersOf(const RunningDesktop &desktop, Clock &clock, const QString &folder)
{
    Keepers keepers;
    keepers.push_back(
        {name(desktop.program), makeKeeper(desktop.program, clock, folder, desktop.profile, true)});
    if (desktop.program != Program::RootWindow && !keepsRootPicture(desktop.program))
        keepers.push_back({rootName, std::make_unique<RootPicture>(folder)});
    return keepers;
}

// Whoever kept the former picture gets it back, even if another desktop runs now.
Keepers keepersIn(const QJsonObject &picture, const RunningDesktop &desktop, Clock &clock,
                  const QString &folder)
{
    Keepers keepers;
    for (const Program program : {Program::Xfce, Program::Pcmanfm, Program::Gnome, Program::Cinnamon,
                                  Program::Mate, Program::Plasma, Program::RootWindow}) {
        const QJsonValue former = picture.value(name(program));
        if (!former.isObject())
            continue;
        const QString profile = former.toObject().value(u"profile"_s).toString();
        const bool isRunning = desktop.program == program && desktop.profile == profile;
        keepers.push_back({name(program), makeKeeper(program, clock, folder, profile, isRunning)});
    }
    return keepers;
}

} // namespace

LinuxDesktopPicture::LinuxDesktopPicture(Clock &clock, QString folder)
    : _clock(clock), _folder(std::move(folder))
{
}

// Nothing of this object is used after the first wait: it may be gone by then.

QCoro::Task<Result<QJsonObject>> LinuxDesktopPicture::current()
{
    Clock &clock = _clock;
    const QString folder = _folder;
    const QFuture<RunningDesktop> search = QtConcurrent::run(RunningDesktop::find);
    const RunningDesktop desktop = co_await search;
    const Keepers keepers = keepersOf(desktop, clock, folder);
    QJsonObject picture;
    for (const Keeper &keeper : keepers) {
        const auto part = co_await keeper.picture->current();
        if (!part)
            co_return std::unexpected(part.error());
        picture.insert(keeper.name, *part);
    }
    co_return picture;
}

QCoro::Task<Result<void>> LinuxDesktopPicture::set(const QString path)
{
    Clock &clock = _clock;
    const QString folder = _folder;
    const QFuture<RunningDesktop> search = QtConcurrent::run(RunningDesktop::find);
    const RunningDesktop desktop = co_await search;
    const Keepers keepers = keepersOf(desktop, clock, folder);
    for (const Keeper &keeper : keepers) {
        if (const auto done = co_await keeper.picture->set(path); !done)
            co_return std::unexpected(done.error());
    }
    co_return Result<void>();
}

QCoro::Task<Result<void>> LinuxDesktopPicture::restore(const QJsonObject picture)
{
    Clock &clock = _clock;
    const QString folder = _folder;
    const QFuture<RunningDesktop> search = QtConcurrent::run(RunningDesktop::find);
    const RunningDesktop desktop = co_await search;
    const Keepers keepers = keepersIn(picture, desktop, clock, folder);
    Result<void> outcome;
    for (const Keeper &keeper : keepers) {
        const QJsonObject former = picture.value(keeper.name).toObject();
        if (const auto done = co_await keeper.picture->restore(former); !done)
            outcome = std::unexpected(done.error());
    }
    co_return std::as_const(outcome);
}

} // namespace velbrix
