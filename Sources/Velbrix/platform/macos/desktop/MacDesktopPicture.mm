#include "platform/macos/desktop/MacDesktopPicture.h"

#include "platform/macos/desktop/ScreenBridge.h"
#include "platform/macos/desktop/ScreenPictures.h"
#include "platform/macos/system/FoundationBridge.h"
#include "platform/macos/system/SystemWatch.h"

#include <QFileInfo>

#include <functional>
#include <utility>

using namespace Qt::StringLiterals;

namespace velbrix {
namespace {

using Options = NSDictionary<NSWorkspaceDesktopImageOptionKey, id>;

// A link that every version of the system keeps to its own picture.
const QString defaultPicture = u"/System/Library/CoreServices/DefaultDesktop.heic"_s;

// The system's number for stretching a picture to the screen.
constexpr int stretched = 1;

NSColor *toNative(const QColor &color)
{
    return [NSColor colorWithSRGBRed:color.redF()
                               green:color.greenF()
                                blue:color.blueF()
                               alpha:color.alphaF()];
}

std::optional<QColor> toColor(NSColor *color)
{
    NSColor *plain = [color colorUsingColorSpace:NSColorSpace.sRGBColorSpace];
    if (!plain)
        return std::nullopt;
    return QColor::fromRgbF(static_cast<float>(plain.redComponent), static_cast<float>(plain.greenComponent),
                            static_cast<float>(plain.blueComponent),
                            static_cast<float>(plain.alphaComponent));
}

ScreenPicture pictureOn(NSScreen *screen)
{
    NSWorkspace *workspace = NSWorkspace.sharedWorkspace;
    ScreenPicture picture;
    picture.path = toQString([workspace desktopImageURLForScreen:screen].path);
    Options *options = [workspace desktopImageOptionsForScreen:screen];
    if (NSNumber *scaling = options[NSWorkspaceDesktopImageScalingKey])
        picture.scaling = scaling.intValue;
    if (NSNumber *clips = options[NSWorkspaceDesktopImageAllowClippingKey])
        picture.clips = clips.boolValue != NO;
    picture.fill = toColor(options[NSWorkspaceDesktopImageFillColorKey]);
    return picture;
}

Options *optionsOf(const ScreenPicture &picture)
{
    NSMutableDictionary<NSWorkspaceDesktopImageOptionKey, id> *options = [NSMutableDictionary new];
    if (picture.scaling)
        options[NSWorkspaceDesktopImageScalingKey] = @(*picture.scaling);
    if (picture.clips)
        options[NSWorkspaceDesktopImageAllowClippingKey] = @(*picture.clips);
    if (picture.fill)
        options[NSWorkspaceDesktopImageFillColorKey] = toNative(*picture.fill);
    return options;
}

Result<QJsonObject> currentPictures()
{
    ScreenPictures pictures;
    for (NSScreen *screen in NSScreen.screens) {
        const ScreenPicture picture = pictureOn(screen);
        if (!picture.path.isEmpty())
            pictures.insert(displayId(screen), picture);
    }
    if (pictures.isEmpty())
        return failure(u"系统没有说明当前的桌面图片"_s);
    return toJson(pictures);
}

// Goes on after a screen that fails and answers its failure.
Result<void> setOnScreens(const std::function<std::optional<ScreenPicture>(quint32)> &pictureOf)
{
    Result<void> done;
    for (NSScreen *screen in NSScreen.screens) {
        const std::optional<ScreenPicture> picture = pictureOf(displayId(screen));
        if (!picture)
            continue;
        NSError *error = nil;
        if (![NSWorkspace.sharedWorkspace setDesktopImageURL:[NSURL fileURLWithPath:toNSString(picture->path)]
                                                   forScreen:screen
                                                     options:optionsOf(*picture)
                                                       error:&error])
            done = std::unexpected(toFailure(error));
    }
    return done;
}

} // namespace

QCoro::Task<Result<QJsonObject>> MacDesktopPicture::current()
{
    co_return currentPictures();
}

QCoro::Task<Result<void>> MacDesktopPicture::set(const QString path)
{
    const ScreenPicture picture{path, stretched, true, std::nullopt};
    co_return setOnScreens([&](quint32) { return picture; });
}

QCoro::Task<Result<QStringList>> MacDesktopPicture::restore(const QJsonObject picture)
{
    ScreenPictures pictures = screenPictures(picture);
    const QStringList gone =
        replaceGone(pictures, defaultPicture, [](const QString &path) { return QFileInfo(path).isFile(); });
    const auto set = setOnScreens([&](quint32 display) { return pictureFor(pictures, display); });
    if (!set)
        co_return std::unexpected(set.error());
    co_return gone;
}

Observation MacDesktopPicture::observePictures(std::function<void()> changed)
{
    return observationOf([[VBNotificationWatch alloc]
        initWithCenter:NSWorkspace.sharedWorkspace.notificationCenter
                  name:NSWorkspaceActiveSpaceDidChangeNotification
                posted:[changed = std::move(changed)](NSNotification *) { changed(); }]);
}

} // namespace velbrix
