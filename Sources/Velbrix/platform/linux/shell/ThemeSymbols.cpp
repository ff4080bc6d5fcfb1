#include "platform/linux/shell/ThemeSymbols.h"

#include <QHash>
#include <QStandardPaths>
#include <QStringList>

using namespace Qt::StringLiterals;

namespace velbrix {
namespace {

const QHash<QString, QString> &iconNames()
{
    static const QHash<QString, QString> table = {
        {u"accessibility"_s, u"actor"_s},
        {u"arrow.clockwise"_s, u"view-refresh"_s},
        {u"bell.fill"_s, u"notifications"_s},
        {u"camera.viewfinder"_s, u"camera-photo"_s},
        {u"checkmark.circle.fill"_s, u"games-solve"_s},
        {u"chevron.down"_s, u"go-down"_s},
        {u"chevron.right"_s, u"go-next"_s},
        {u"clock"_s, u"clock"_s},
        {u"display"_s, u"monitor"_s},
        {u"doc.on.clipboard"_s, u"edit-paste"_s},
        {u"exclamationmark.triangle.fill"_s, u"data-warning"_s},
        {u"film"_s, u"video-x-generic"_s},
        {u"folder"_s, u"folder-open"_s},
        {u"folder.fill"_s, u"folder"_s},
        {u"gauge"_s, u"speedometer"_s},
        {u"gearshape"_s, u"configure"_s},
        {u"gearshape.fill"_s, u"configure"_s},
        {u"hand.raised.fill"_s, u"hand"_s},
        {u"info.circle"_s, u"help-about"_s},
        {u"keyboard"_s, u"input-keyboard"_s},
        {u"lock.fill"_s, u"object-locked"_s},
        {u"lock.shield.fill"_s, u"security-high"_s},
        {u"macwindow"_s, u"window"_s},
        {u"magnifyingglass"_s, u"edit-find"_s},
        {u"mic.fill"_s, u"audio-input-microphone"_s},
        {u"minus"_s, u"list-remove"_s},
        {u"pause.fill"_s, u"media-playback-pause"_s},
        {u"pencil"_s, u"document-edit"_s},
        {u"person.crop.circle"_s, u"user-identity"_s},
        {u"photo"_s, u"photo"_s},
        {u"play.fill"_s, u"media-playback-start"_s},
        {u"plus"_s, u"list-add"_s},
        {u"power"_s, u"system-shutdown"_s},
        {u"questionmark.circle"_s, u"question"_s},
        {u"record.circle"_s, u"media-record"_s},
        {u"record.circle.fill"_s, u"media-record"_s},
        {u"rectangle.inset.filled"_s, u"view-fullscreen"_s},
        {u"shippingbox.fill"_s, u"draw-cuboid"_s},
        {u"sparkles"_s, u"tools-wizard"_s},
        {u"speaker.wave.2.fill"_s, u"audio-volume-high"_s},
        {u"stop.circle.fill"_s, u"media-playback-stop"_s},
        {u"stop.fill"_s, u"media-playback-stop"_s},
        {u"trash"_s, u"user-trash"_s},
        {u"video.badge.waveform.fill"_s, u"camera-video"_s},
        {u"video.fill"_s, u"camera-video"_s},
        {u"xmark"_s, u"dialog-close"_s},
        {u"xmark.circle.fill"_s, u"window-close"_s},
    };
    return table;
}

} // namespace

ThemeSymbols::ThemeSymbols()
{
    // A session without a desktop's Qt integration names no icon folders.
    QStringList folders = QIcon::themeSearchPaths();
    const QStringList shared = QStandardPaths::locateAll(QStandardPaths::GenericDataLocation, u"icons"_s,
                                                         QStandardPaths::LocateDirectory);
    for (const QString &folder : shared) {
        if (!folders.contains(folder))
            folders.append(folder);
    }
    QIcon::setThemeSearchPaths(folders);
    const QString fallback = u"breeze"_s;
    QIcon::setFallbackThemeName(fallback);
    // The theme that only holds other programs' icons means: none is set.
    if (QIcon::themeName().isEmpty() || QIcon::themeName() == u"hicolor"_s)
        QIcon::setThemeName(fallback);
}

QIcon ThemeSymbols::icon(const QString &symbolName) const
{
    const auto it = iconNames().constFind(symbolName);
    return it == iconNames().cend() ? QIcon() : QIcon::fromTheme(*it);
}

QStringList ThemeSymbols::names()
{
    return iconNames().keys();
}

} // namespace velbrix
