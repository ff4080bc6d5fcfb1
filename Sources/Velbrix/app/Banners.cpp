#include "app/Banners.h"

#include "app/AppServices.h"
#include "app/Shell.h"

#include <QFileInfo>

using namespace Qt::StringLiterals;

namespace velbrix {
namespace {

const QString warning = u"exclamationmark.triangle.fill"_s;

} // namespace

Banners::Banners(AppServices &services, Shell &shell, QObject *parent)
    : QObject(parent), _services(services), _shell(shell)
{
}

void Banners::show(const QString &title, const QString &body, const QString &icon)
{
    _services.notifications.post(bannerToastNotification,
                                 {{u"title"_s, title}, {u"body"_s, body}, {u"icon"_s, icon}});
}

void Banners::tellOfStart()
{
    if (const QString problem = _services.settings.loadProblem(); !problem.isEmpty())
        show(u"设置"_s, problem, warning);
    if (!_services.recorder.unfinished().leftovers().isEmpty())
        show(u"发现未正常结束的录制"_s, u"可以在录制面板里修复。"_s, u"film"_s);
}

void Banners::follow()
{
    followRecorder();
    followWallpaper();
    _settingsFailures = _services.settings.observeFailures(
        [this](const Failure &reason) { show(u"设置没有存盘，稍后会再试"_s, reason.message, warning); });
}

void Banners::unfollow()
{
    _settingsFailures.reset();
    _services.toasts.clear();
}

void Banners::tellIconsStay()
{
    show(u"桌面图标没有被盖住"_s, u"请先在“动态壁纸”里打开“隐藏桌面文件”。"_s, u"info.circle"_s);
}

void Banners::followRecorder()
{
    const RecordingSession &session = _services.recorder.session();
    connect(&session, &RecordingSession::lastFailureChanged, this, [this, &session] {
        if (!session.lastFailure().isEmpty())
            show(u"屏幕录制"_s, session.lastFailure(), warning);
    });
    connect(&session, &RecordingSession::finishedMovieChanged, this, [this, &session] {
        if (const auto movie = session.finishedMovie())
            show(u"录制已保存"_s, QFileInfo(*movie).fileName(), u"checkmark.circle.fill"_s);
    });
}

void Banners::followWallpaper()
{
    WallpaperController &wallpaper = _services.wallpaper;
    connect(&wallpaper, &WallpaperController::stateChanged, this, [this, &wallpaper] {
        const WallpaperState state = wallpaper.state();
        if (state.kind == WallpaperState::Kind::failed)
            showBehindWindow(u"动态壁纸"_s, state.message);
    });
    connect(&wallpaper, &WallpaperController::noticeChanged, this,
            [this, &wallpaper] { showBehindWindow(u"动态壁纸"_s, wallpaper.notice()); });
    DockHiding &dock = wallpaper.dock();
    connect(&dock, &DockHiding::problemChanged, this,
            [this, &dock] { showBehindWindow(u"隐藏 Dock"_s, dock.problem()); });
}

void Banners::showBehindWindow(const QString &title, const QString &body)
{
    if (!body.isEmpty() && !_shell.isMainWindowVisible())
        show(title, body, warning);
}

} // namespace velbrix
