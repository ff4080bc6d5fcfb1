#include "views/wallpaper/WallpaperWords.h"

#include "wallpaper/WallpaperController.h"

#include <QStringList>

#include <cmath>

using namespace Qt::StringLiterals;

namespace velbrix {
namespace {

QString videoOf(const WallpaperDisplayInfo &display)
{
    if (!display.isUsed)
        return u"不放壁纸，显示原来的桌面图片"_s;
    if (!display.videoPath)
        return display.isMain ? u"还没有视频"_s : u"跟随主屏"_s;
    const QString name = fileName(*display.videoPath);
    if (!display.isMissing)
        return name;
    return display.isMain ? u"找不到 %1"_s.arg(name) : u"找不到 %1，跟随主屏"_s.arg(name);
}

} // namespace

WallpaperLook lookOf(const WallpaperController &wallpaper)
{
    // What a refused file says is not what the older one does.
    if (wallpaper.isShowing())
        return wallpaper.isPaused() ? WallpaperLook::paused : WallpaperLook::playing;
    if (wallpaper.state().kind == WallpaperState::Kind::failed)
        return WallpaperLook::failed;
    if (!wallpaper.content().canShow())
        return WallpaperLook::unchosen;
    return wallpaper.power().blocks() ? WallpaperLook::onBattery : WallpaperLook::ready;
}

BadgeLook badgeOf(WallpaperLook look)
{
    switch (look) {
    case WallpaperLook::unchosen:
        return {u"未选择"_s, u"film"_s, ThemeColor::secondary, u"note"_s};
    case WallpaperLook::ready:
        return {u"已就绪"_s, u"checkmark.circle.fill"_s, ThemeColor::secondary, u"note"_s};
    case WallpaperLook::onBattery:
        return {u"使用电池，已停止"_s, u"battery.25"_s, ThemeColor::warning, u"warning"_s};
    case WallpaperLook::playing:
        return {u"播放中"_s, u"play.fill"_s, ThemeColor::good, u"good"_s};
    case WallpaperLook::paused:
        return {u"已暂停"_s, u"pause.fill"_s, ThemeColor::warning, u"warning"_s};
    case WallpaperLook::failed:
        return {u"无法播放"_s, u"xmark.circle.fill"_s, ThemeColor::bad, u"bad"_s};
    }
    Q_UNREACHABLE();
}

QString lengthText(std::optional<double> seconds)
{
    if (!seconds)
        return {};
    const auto whole = static_cast<qint64>(std::llround(*seconds));
    const auto two = [](qint64 number) { return u"%1"_s.arg(number, 2, 10, QChar(u'0')); };
    if (whole < 3600)
        return u"%1:%2"_s.arg(whole / 60).arg(two(whole % 60));
    return u"%1:%2:%3"_s.arg(whole / 3600).arg(two(whole / 60 % 60), two(whole % 60));
}

QString describeVideo(QSizeF size, double framesPerSecond, double seconds)
{
    QStringList parts;
    if (!size.isEmpty())
        parts.append(u"%1×%2"_s.arg(qRound(size.width())).arg(qRound(size.height())));
    if (framesPerSecond > 0)
        parts.append(u"%1 帧/秒"_s.arg(QString::number(std::round(framesPerSecond * 100) / 100)));
    if (seconds > 0)
        parts.append(lengthText(seconds));
    return parts.join(u" · "_s);
}

QString describeDisplay(const WallpaperDisplayInfo &display)
{
    const QSize size = display.frame.size();
    return u"%1 · %2×%3 · %4"_s.arg(display.isMain ? u"主屏"_s : u"副屏"_s)
        .arg(size.width())
        .arg(size.height())
        .arg(videoOf(display));
}

QString countDisplays(qsizetype count)
{
    if (count == 0)
        return u"没有检测到屏幕"_s;
    return count == 1 ? u"当前仅检测到 1 块屏幕"_s : u"%1 块屏幕，可为每块屏单独设置视频"_s.arg(count);
}

QString fileName(const QString &path)
{
    return path.sliced(path.lastIndexOf(u'/') + 1);
}

} // namespace velbrix
