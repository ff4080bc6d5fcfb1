#include "app/TrayController.h"

#include "app/AppServices.h"
#include "app/Tools.h"
#include "app/UserInterface.h"
#include "foundation/Deployment.h"
#include "platform/Platform.h"

#include <QStringList>

#include <algorithm>

using namespace Qt::StringLiterals;
using namespace std::chrono_literals;

namespace velbrix {
namespace {

constexpr auto activeRefreshInterval = 5s;
constexpr auto idleRefreshInterval = 20s;

} // namespace

TrayController::TrayController(AppServices &services, UserInterface &ui, QObject *parent)
    : QObject(parent), _services(services), _ui(ui)
{
    followTools();
    _trayHostChanges = _services.platform.desktop->observeTrayHost([this] { trayHostChanged(); });
}

TrayController::~TrayController() = default;

void TrayController::followTools()
{
    for (const Tool &tool : tools()) {
        if (tool.followTray)
            tool.followTray(_services, *this);
    }
}

void TrayController::createStatusItem()
{
    if (_hasStatusItem || !_services.platform.desktop->hasTrayHost())
        return;
    _hasStatusItem = true;
    _ui.createTray(
        menu(), [this] { refresh(true); },
        // Queued: the menu has closed then.
        [this](const QString &id) {
            QMetaObject::invokeMethod(this, [this, id] { choose(id); }, Qt::QueuedConnection);
        });
}

void TrayController::refresh(bool forced)
{
    const QString now = signature();
    if (!forced && now == _lastTraySignature)
        return;
    _lastTraySignature = now;
    if (_hasStatusItem)
        _ui.updateTray(menu(), isRecording());
}

QList<TrayMenuItem> TrayController::menu()
{
    const TrayMenuItem separator{{}, {}};
    AppRouter &router = _services.router;
    QList<TrayMenuItem> items = {
        {u"open"_s, u"打开 Velbrix"_s, u"⌘O"_s, true, [&router] { router.openWindow(); }}, separator};
    for (const Tool &tool : tools()) {
        if (!tool.tray)
            continue;
        const TraySection section = tool.tray(_services);
        items << TrayMenuItem{tool.identifier, section.title, {}, false} << section.items << separator;
    }
    items << TrayMenuItem{u"privacy"_s, u"隐私与声明…"_s, {}, true, [&router] { router.openStatement(); }}
          << TrayMenuItem{u"remoteCheck"_s, u"检查更新与公告…"_s, {}, true, [this] { checkRemoteConfig(); }}
          << separator
          << TrayMenuItem{u"quit"_s, u"退出"_s, u"⌘Q"_s, true, [this] { _services.quit.begin(); }};
    return items;
}

QString TrayController::signature()
{
    QStringList state;
    for (const Tool &tool : tools()) {
        if (tool.tray)
            state += tool.tray(_services).state;
    }
    return state.join(u'|');
}

bool TrayController::isRecording() const
{
    return std::ranges::any_of(allJobs(_services), [](const Job *job) {
        return job->kind() == Job::Kind::recording && !job->state().what.isEmpty();
    });
}

void TrayController::choose(const QString &id)
{
    if (_services.quit.isEnding())
        return;
    const QList<TrayMenuItem> items = menu();
    const auto chosen = std::ranges::find(items, id, &TrayMenuItem::id);
    if (chosen != items.end() && chosen->act)
        chosen->act();
}

void TrayController::checkRemoteConfig()
{
    const QString reason = deployment::productServer().isEmpty()
                               ? u"此安装没有配置产品服务器，无法检查更新与公告。"_s
                               : u"此版本还不能读取更新与公告，请到产品网站查看。"_s;
    postBanner(_services.notifications, u"检查更新与公告"_s, reason, u"info.circle"_s);
}

void TrayController::scheduleMenuRefresh(bool isAppActive)
{
    _menuRefreshTimer = _services.clock.every(isAppActive ? activeRefreshInterval : idleRefreshInterval,
                                              [this] { refresh(false); });
}

void TrayController::remove()
{
    _menuRefreshTimer.reset();
    _hasStatusItem = false;
    _ui.removeTray();
}

void TrayController::trayHostChanged()
{
    if (_services.platform.desktop->hasTrayHost()) {
        createStatusItem();
        refresh(true);
        return;
    }
    if (std::exchange(_hasStatusItem, false))
        _ui.removeTray();
}

} // namespace velbrix
