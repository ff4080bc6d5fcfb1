#include "platform/linux/desktop/LinuxDesktopPicture.h"

#include <QCoroFuture>
#include <QtConcurrent/QtConcurrentRun>

#include <utility>
#include <vector>

using namespace Qt::StringLiterals;

namespace velbrix {
namespace {

const QString rootKey = u"root"_s;

// One place that keeps a picture, under its name in what is remembered.
struct Keeper {
    QString key;
    std::unique_ptr<DesktopPicture> picture;
};
using Keepers = std::vector<Keeper>;

// What every task needs, even after the object that began it has gone.
struct Surroundings {
    Clock &clock;
    std::shared_ptr<const DesktopSession> session;
    QString folder;
};

QFuture<DesktopSigns> readSigns(const Surroundings &here)
{
    return QtConcurrent::run([session = here.session] { return session->signs(); });
}

QString profileOf(const Desktop &desktop, const DesktopSigns &signs)
{
    return desktop.readProfile ? desktop.readProfile(signs.backdropProcess) : QString();
}

Keeper rootKeeper(const Surroundings &here)
{
    return {rootKey, here.session->rootPicture(here.folder)};
}

Keepers keepersNow(const DesktopSigns &signs, const Surroundings &here)
{
    Keepers keepers;
    const Desktop *const desktop = recognisedDesktop(signs);
    const bool hasOwn = desktop && desktop->makePicture;
    if (hasOwn) {
        const PictureRequest request{here.clock, here.session, profileOf(*desktop, signs), true};
        keepers.push_back({desktop->key, desktop->makePicture(request)});
    }
    if (!hasOwn || !desktop->publishesPicture)
        keepers.push_back(rootKeeper(here));
    return keepers;
}

// A place's name here: its keeper's key, and what that calls it if it has several.
QString nameOf(const QString &key, const QString &place)
{
    return place.isEmpty() ? key : key + u' ' + place;
}

// What of the picture the keeper has kept, under its own names.
QJsonObject partOf(const QString &key, const QJsonObject &picture)
{
    QJsonObject part;
    for (auto place = picture.begin(); place != picture.end(); ++place) {
        if (place.key().section(u' ', 0, 0) == key)
            part.insert(place.key().section(u' ', 1), *place);
    }
    return part;
}

// Whoever kept the former picture gets it back, even if another desktop runs now.
Keepers keepersThen(const QJsonObject &picture, const DesktopSigns &signs, const Surroundings &here)
{
    Keepers keepers;
    const Desktop *const running = recognisedDesktop(signs);
    for (const Desktop &desktop : desktops()) {
        const QJsonObject former = partOf(desktop.key, picture);
        if (!desktop.makePicture || former.isEmpty())
            continue;
        const QString profile = former.begin()->toObject().value(u"profile"_s).toString();
        const bool isRunning = running == &desktop && profileOf(desktop, signs) == profile;
        keepers.push_back({desktop.key, desktop.makePicture({here.clock, here.session, profile, isRunning})});
    }
    if (!partOf(rootKey, picture).isEmpty())
        keepers.push_back(rootKeeper(here));
    return keepers;
}

} // namespace

LinuxDesktopPicture::LinuxDesktopPicture(Clock &clock, std::shared_ptr<const DesktopSession> session,
                                         QString folder)
    : _clock(clock), _session(std::move(session)), _folder(std::move(folder))
{
}

// Nothing of this object is used after the first wait: it may be gone by then.

QCoro::Task<Result<QJsonObject>> LinuxDesktopPicture::current()
{
    const Surroundings here{_clock, _session, _folder};
    const QFuture<DesktopSigns> search = readSigns(here);
    const DesktopSigns signs = co_await search;
    const Keepers keepers = keepersNow(signs, here);
    QJsonObject picture;
    for (const Keeper &keeper : keepers) {
        const auto part = co_await keeper.picture->current();
        if (!part)
            co_return std::unexpected(part.error());
        for (auto place = part->begin(); place != part->end(); ++place)
            picture.insert(nameOf(keeper.key, place.key()), *place);
    }
    co_return picture;
}

QCoro::Task<Result<void>> LinuxDesktopPicture::set(const QString path)
{
    const Surroundings here{_clock, _session, _folder};
    const QFuture<DesktopSigns> search = readSigns(here);
    const DesktopSigns signs = co_await search;
    const Keepers keepers = keepersNow(signs, here);
    for (const Keeper &keeper : keepers) {
        if (const auto done = co_await keeper.picture->set(path); !done)
            co_return std::unexpected(done.error());
    }
    co_return Result<void>();
}

QCoro::Task<Result<QStringList>> LinuxDesktopPicture::restore(const QJsonObject picture)
{
    const Surroundings here{_clock, _session, _folder};
    const QFuture<DesktopSigns> search = readSigns(here);
    const DesktopSigns signs = co_await search;
    const Keepers keepers = keepersThen(picture, signs, here);
    Result<QStringList> outcome;
    for (const Keeper &keeper : keepers) {
        const QJsonObject former = partOf(keeper.key, picture);
        const auto gone = co_await keeper.picture->restore(former);
        if (!gone)
            outcome = std::unexpected(gone.error());
        else if (outcome)
            outcome->append(*gone);
    }
    co_return std::as_const(outcome);
}

} // namespace velbrix
