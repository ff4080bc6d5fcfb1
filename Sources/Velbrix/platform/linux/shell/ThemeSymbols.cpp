#include "platform/linux/shell/ThemeSymbols.h"

#include <QFile>
#include <QHash>
#include <QStandardPaths>
#include <QStringList>

using namespace Qt::StringLiterals;

namespace velbrix {
namespace {

// Folder and name in the Breeze set.
const QHash<QString, QString> &iconNames()
{
    static const QHash<QString, QString> table = {
        {u"accessibility"_s, u"actions/actor"_s},
        {u"arrow.clockwise"_s, u"actions/view-refresh"_s},
        {u"bell.fill"_s, u"actions/notifications"_s},
        {u"camera.viewfinder"_s, u"devices/camera-photo"_s},
        {u"checkmark.circle.fill"_s, u"actions/games-solve"_s},
        {u"chevron.down"_s, u"actions/go-down"_s},
        {u"chevron.right"_s, u"actions/go-next"_s},
        {u"clock"_s, u"actions/clock"_s},
        {u"display"_s, u"devices/monitor"_s},
        {u"doc.on.clipboard"_s, u"actions/edit-paste"_s},
        {u"exclamationmark.triangle.fill"_s, u"status/data-warning"_s},
        {u"film"_s, u"mimetypes/video-x-generic"_s},
        {u"folder"_s, u"places/folder-open"_s},
        {u"folder.fill"_s, u"places/folder"_s},
        {u"gauge"_s, u"actions/speedometer"_s},
        {u"gearshape"_s, u"actions/configure"_s},
        {u"gearshape.fill"_s, u"actions/configure"_s},
        {u"hand.raised.fill"_s, u"actions/hand"_s},
        {u"info.circle"_s, u"actions/help-about"_s},
        {u"keyboard"_s, u"devices/input-keyboard"_s},
        {u"lock.fill"_s, u"actions/object-locked"_s},
        {u"lock.shield.fill"_s, u"status/security-high"_s},
        {u"macwindow"_s, u"actions/window"_s},
        {u"magnifyingglass"_s, u"actions/edit-find"_s},
        {u"mic.fill"_s, u"devices/audio-input-microphone"_s},
        {u"minus"_s, u"actions/list-remove"_s},
        {u"pause.fill"_s, u"actions/media-playback-pause"_s},
        {u"pencil"_s, u"actions/document-edit"_s},
        {u"person.crop.circle"_s, u"actions/user-identity"_s},
        {u"photo"_s, u"actions/photo"_s},
        {u"photo.on.rectangle"_s, u"actions/viewimage"_s},
        {u"play.fill"_s, u"actions/media-playback-start"_s},
        {u"plus"_s, u"actions/list-add"_s},
        {u"power"_s, u"actions/system-shutdown"_s},
        {u"questionmark.circle"_s, u"actions/question"_s},
        {u"record.circle"_s, u"actions/media-record"_s},
        {u"record.circle.fill"_s, u"actions/media-record"_s},
        {u"rectangle.inset.filled"_s, u"actions/view-fullscreen"_s},
        {u"shippingbox.fill"_s, u"actions/draw-cuboid"_s},
        {u"sparkles"_s, u"actions/tools-wizard"_s},
        {u"speaker.wave.2.fill"_s, u"status/audio-volume-high"_s},
        {u"stop.circle.fill"_s, u"actions/media-playback-stop"_s},
        {u"stop.fill"_s, u"actions/media-playback-stop"_s},
        {u"trash"_s, u"places/user-trash"_s},
        {u"video.badge.waveform.fill"_s, u"devices/camera-video"_s},
        {u"video.fill"_s, u"devices/camera-video"_s},
        {u"xmark"_s, u"actions/edit-delete-remove"_s},
        {u"xmark.circle.fill"_s, u"actions/window-close"_s},
    };
    return table;
}

// One drawing in Breeze's small sizes is a single colour on nothing; its large
// sizes, and other themes, paint pictures that would tint to a blot.
QString breezeFile(const QStringList &folders, const QString &icon)
{
    for (const QString &folder : folders) {
        for (const QString &size : {u"/22/"_s, u"/16/"_s}) {
            const QString file =
                folder + u"/breeze/"_s + icon.section(u'/', 0, 0) + size + icon.section(u'/', 1) + u".svg"_s;
            if (QFile::exists(file))
                return file;
        }
    }
    return {};
}

} // namespace

ThemeSymbols::ThemeSymbols()
    : _folders(QStandardPaths::locateAll(QStandardPaths::GenericDataLocation, u"icons"_s,
                                         QStandardPaths::LocateDirectory))
{
}

QIcon ThemeSymbols::icon(const QString &symbolName) const
{
    const auto it = iconNames().constFind(symbolName);
    if (it == iconNames().cend())
        return {};
    const QString file = breezeFile(_folders, *it);
    return file.isEmpty() ? QIcon::fromTheme(it->section(u'/', 1)) : QIcon(file);
}

QStringList ThemeSymbols::names()
{
    return iconNames().keys();
}

} // namespace velbrix
