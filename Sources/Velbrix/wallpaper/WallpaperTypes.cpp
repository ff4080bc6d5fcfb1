#include "wallpaper/WallpaperTypes.h"

#include <QFileInfo>

#include <algorithm>
#include <cmath>

using namespace Qt::StringLiterals;

namespace velbrix {
namespace {

double clampedOr(double value, double least, double most, double otherwise)
{
    return std::isnan(value) ? otherwise : std::clamp(value, least, most);
}

} // namespace

QString rawValue(WallpaperContentMode mode)
{
    switch (mode) {
    case WallpaperContentMode::video:
        return u"视频壁纸"_s;
    case WallpaperContentMode::html:
        return u"HTML壁纸"_s;
    case WallpaperContentMode::music:
        return u"音乐壁纸(Beta)"_s;
    }
    return {};
}

WallpaperContentMode wallpaperContentModeFromRawValue(const QString &stored)
{
    for (const auto mode : {WallpaperContentMode::html, WallpaperContentMode::music}) {
        if (stored == rawValue(mode))
            return mode;
    }
    return WallpaperContentMode::video;
}

QString rawValue(WallpaperGravity gravity)
{
    switch (gravity) {
    case WallpaperGravity::fill:
        return u"填充"_s;
    case WallpaperGravity::aspectFill:
        return u"裁剪"_s;
    case WallpaperGravity::aspectFit:
        return u"适应"_s;
    case WallpaperGravity::resize:
        return u"拉伸"_s;
    case WallpaperGravity::none:
        return u"居中"_s;
    }
    return {};
}

WallpaperGravity wallpaperGravityFromRawValue(const QString &stored)
{
    const auto found = std::ranges::find_if(
        allWallpaperGravities, [&](WallpaperGravity gravity) { return rawValue(gravity) == stored; });
    return found == allWallpaperGravities.end() ? WallpaperGravity::aspectFill : *found;
}

VideoGravity layerGravity(WallpaperGravity gravity)
{
    switch (gravity) {
    case WallpaperGravity::fill:
    case WallpaperGravity::resize:
        return VideoGravity::stretch;
    case WallpaperGravity::aspectFit:
    case WallpaperGravity::none:
        return VideoGravity::fit;
    case WallpaperGravity::aspectFill:
        break;
    }
    return VideoGravity::crop;
}

QString rawValue(VideoOrder order)
{
    switch (order) {
    case VideoOrder::name:
        return u"name"_s;
    case VideoOrder::date:
        return u"date"_s;
    case VideoOrder::length:
        return u"length"_s;
    case VideoOrder::size:
        return u"size"_s;
    }
    return {};
}

VideoOrder videoOrderFromRawValue(const QString &stored)
{
    const auto found =
        std::ranges::find_if(allVideoOrders, [&](VideoOrder order) { return rawValue(order) == stored; });
    return found == allVideoOrders.end() ? VideoOrder::name : *found;
}

const QStringList &videoExtensions()
{
    static const QStringList extensions = {u"mp4"_s, u"mov"_s,  u"m4v"_s, u"avi"_s,
                                           u"mkv"_s, u"webm"_s, u"wmv"_s, u"flv"_s};
    return extensions;
}

bool hasExtension(const QString &path, const QStringList &extensions)
{
    return extensions.contains(QFileInfo(path).suffix().toLower());
}

double clampedVolume(double volume)
{
    return clampedOr(volume, 0.0, 1.0, 0.3);
}

int clampedTurn(int minutes)
{
    return std::clamp(minutes, 0, 24 * 60);
}

double clampedSpeed(double speed)
{
    return clampedOr(speed, 0.25, 2.0, 1.0);
}

} // namespace velbrix
