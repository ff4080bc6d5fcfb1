#include "app/Banners.h"

#include "app/AppServices.h"
#include "app/Tools.h"
#include "app/UserInterface.h"

using namespace Qt::StringLiterals;

namespace velbrix {

Banners::Banners(AppServices &services, UserInterface &ui, QObject *parent)
    : QObject(parent), _services(services), _ui(ui)
{
}

void Banners::follow()
{
    if (const QString problem = _services.settings.loadProblem(); !problem.isEmpty())
        warn(u"设置"_s, problem);
    _settingsFailures = _services.settings.observeFailures([this](const Failure &reason) {
        const bool isForGood = reason.message == _services.settings.loadProblem();
        warn(isForGood ? u"设置没有存盘"_s : u"设置没有存盘，稍后会再试"_s, reason.message);
    });
    for (const Tool &tool : tools()) {
        if (tool.news)
            tool.news(_services, *this);
    }
}

void Banners::unfollow()
{
    _settingsFailures.reset();
    _services.toasts.clear();
}

void Banners::show(const QString &title, const QString &body, const QString &icon, ToastTone tone)
{
    postBanner(_services.notifications, title, body, icon, tone);
}

void Banners::warn(const QString &title, const QString &body)
{
    show(title, body, u"exclamationmark.triangle.fill"_s, ToastTone::warning);
}

void Banners::warnBehindWindow(const QString &title, const QString &body)
{
    if (!body.isEmpty() && !_ui.isMainWindowVisible())
        warn(title, body);
}

} // namespace velbrix
