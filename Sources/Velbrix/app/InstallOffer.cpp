#include "app/InstallOffer.h"

#include "app/QuitSequence.h"
#include "app/Toast.h"
#include "foundation/Log.h"
#include "foundation/SettingsStore.h"
#include "platform/InstallPlace.h"

#include <QPointer>

using namespace Qt::StringLiterals;

namespace velbrix {
namespace {

const QString autoMoveKey = u"Velbrix_AutoMoveToAppDir"_s;
const QString logTag = u"MoveToAppDir"_s;

} // namespace

InstallOffer::InstallOffer(InstallPlace *place, SettingsStore &settings, NotificationCenter &center,
                           QuitSequence &quit, QObject *parent)
    : QObject(parent), _place(place), _settings(settings), _center(center), _quit(quit)
{
    _autoMoveToAppDir = _settings.boolean(autoMoveKey).value_or(true);
}

std::optional<QString> InstallOffer::misplacedAt() const
{
    return _place ? _place->misplacedAt() : std::nullopt;
}

void InstallOffer::setAutoMoveToAppDir(bool offers)
{
    _autoMoveToAppDir = offers;
    _settings.set(autoMoveKey, offers);
}

void InstallOffer::announce()
{
    const auto where = _autoMoveToAppDir ? misplacedAt() : std::nullopt;
    if (!where)
        return;
    log::line(logTag, u"running from "_s + *where);
    postBanner(_center, u"Velbrix 还不在“应用程序”文件夹里"_s, u"可以在“设置”的“启动”中把它移过去。"_s,
               u"info.circle"_s);
}

void InstallOffer::moveToApplications()
{
    if (!_isMoving && _place)
        move();
}

QCoro::Task<> InstallOffer::move()
{
    const QPointer self(this);
    _isMoving = true;
    _problem = QString();
    const auto moved = co_await _place->moveToApplications();
    if (!self)
        co_return;
    _isMoving = false;
    if (moved) {
        log::line(logTag, u"moved"_s);
        _quit.begin();
        co_return;
    }
    log::line(logTag, u"failed: "_s + moved.error().message);
    _problem = u"没有移动："_s + moved.error().message;
}

} // namespace velbrix
