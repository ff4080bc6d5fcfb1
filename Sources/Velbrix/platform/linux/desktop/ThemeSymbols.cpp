#include "platform/linux/desktop/ThemeSymbols.h"

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
        {u"app"_s, u"actions/window"_s},
        {u"applewatch"_s, u"actions/chronometer"_s},
        {u"archivebox"_s, u"mimetypes/application-x-archive"_s},
        {u"arrow.clockwise"_s, u"actions/view-refresh"_s},
        {u"arrow.counterclockwise"_s, u"actions/backup"_s},
        {u"arrow.right"_s, u"actions/arrow-right"_s},
        {u"arrow.triangle.2.circlepath"_s, u"status/appointment-recurring"_s},
        {u"arrow.uturn.backward"_s, u"actions/edit-undo"_s},
        {u"battery.25"_s, u"status/battery-020"_s},
        {u"bell.fill"_s, u"actions/notifications"_s},
        {u"calendar"_s, u"actions/view-calendar"_s},
        {u"camera.viewfinder"_s, u"devices/camera-photo"_s},
        {u"checkmark"_s, u"actions/dialog-ok"_s},
        {u"checkmark.circle.fill"_s, u"actions/games-solve"_s},
        {u"chevron.down"_s, u"actions/go-down"_s},
        {u"chevron.left"_s, u"actions/go-previous"_s},
        {u"chevron.left.forwardslash.chevron.right"_s, u"actions/format-text-code"_s},
        {u"chevron.right"_s, u"actions/go-next"_s},
        {u"chevron.up"_s, u"actions/go-up"_s},
        {u"clock"_s, u"actions/clock"_s},
        {u"clock.arrow.circlepath"_s, u"actions/backup"_s},
        {u"cube.box"_s, u"actions/draw-cuboid"_s},
        {u"cylinder.split.1x2"_s, u"places/server-database"_s},
        {u"display"_s, u"devices/monitor"_s},
        {u"doc"_s, u"mimetypes/unknown"_s},
        {u"doc.on.clipboard"_s, u"actions/edit-paste"_s},
        {u"doc.on.doc"_s, u"actions/edit-copy"_s},
        {u"doc.text"_s, u"places/folder-log"_s},
        {u"doc.text.magnifyingglass"_s, u"actions/document-preview"_s},
        {u"doc.zipper"_s, u"mimetypes/application-x-archive"_s},
        {u"ellipsis"_s, u"actions/overflow-menu"_s},
        {u"exclamationmark.triangle.fill"_s, u"status/data-warning"_s},
        {u"externaldrive"_s, u"devices/drive-harddisk"_s},
        {u"externaldrive.badge.timemachine"_s, u"actions/backup"_s},
        {u"eye"_s, u"actions/view-visible"_s},
        {u"film"_s, u"mimetypes/video-x-generic"_s},
        {u"flame"_s, u"apps/hotspot"_s},
        {u"folder"_s, u"places/folder-open"_s},
        {u"folder.badge.gearshape"_s, u"places/folder-temp"_s},
        {u"folder.badge.plus"_s, u"actions/folder-new"_s},
        {u"folder.fill"_s, u"places/folder"_s},
        {u"forward.end.fill"_s, u"actions/media-skip-forward"_s},
        {u"gauge"_s, u"actions/speedometer"_s},
        {u"gearshape"_s, u"actions/configure"_s},
        {u"gearshape.2"_s, u"places/folder-build"_s},
        {u"gearshape.fill"_s, u"actions/configure"_s},
        {u"globe"_s, u"actions/globe"_s},
        {u"hammer"_s, u"actions/tools"_s},
        {u"hand.raised.fill"_s, u"actions/hand"_s},
        {u"info.circle"_s, u"actions/help-about"_s},
        {u"ipad.landscape"_s, u"devices/tablet"_s},
        {u"iphone.gen2"_s, u"devices/smartphone"_s},
        {u"keyboard"_s, u"devices/input-keyboard"_s},
        {u"line.3.horizontal.decrease"_s, u"actions/view-filter"_s},
        {u"link"_s, u"actions/link"_s},
        {u"list.bullet"_s, u"actions/format-list-unordered"_s},
        {u"lock.fill"_s, u"actions/object-locked"_s},
        {u"lock.shield.fill"_s, u"status/security-high"_s},
        {u"macwindow"_s, u"actions/window"_s},
        {u"magnifyingglass"_s, u"actions/edit-find"_s},
        {u"memorychip"_s, u"devices/media-flash-memory-stick"_s},
        {u"mic.fill"_s, u"devices/audio-input-microphone"_s},
        {u"minus"_s, u"actions/list-remove"_s},
        {u"network"_s, u"places/network-server"_s},
        {u"pause.fill"_s, u"actions/media-playback-pause"_s},
        {u"pencil"_s, u"actions/document-edit"_s},
        {u"person.crop.circle"_s, u"actions/user-identity"_s},
        {u"photo"_s, u"actions/photo"_s},
        {u"photo.on.rectangle"_s, u"actions/viewimage"_s},
        {u"play.fill"_s, u"actions/media-playback-start"_s},
        {u"plus"_s, u"actions/list-add"_s},
        {u"power"_s, u"actions/system-shutdown"_s},
        {u"puzzlepiece.extension"_s, u"places/folder-extension"_s},
        {u"questionmark.circle"_s, u"actions/question"_s},
        {u"record.circle"_s, u"actions/media-record"_s},
        {u"record.circle.fill"_s, u"actions/media-record"_s},
        {u"rectangle.inset.filled"_s, u"actions/view-fullscreen"_s},
        {u"safari"_s, u"actions/compass"_s},
        {u"shippingbox"_s, u"actions/class-or-package"_s},
        {u"shippingbox.fill"_s, u"actions/draw-cuboid"_s},
        {u"sparkles"_s, u"actions/edit-clear-all"_s},
        {u"speaker.slash.fill"_s, u"status/audio-volume-muted"_s},
        {u"speaker.wave.2.fill"_s, u"status/audio-volume-high"_s},
        {u"square.and.arrow.down"_s, u"actions/download"_s},
        {u"square.grid.2x2"_s, u"actions/view-list-icons"_s},
        {u"stop.circle.fill"_s, u"actions/media-playback-stop"_s},
        {u"stop.fill"_s, u"actions/media-playback-stop"_s},
        {u"terminal"_s, u"actions/dialog-scripts"_s},
        {u"trash"_s, u"places/user-trash"_s},
        {u"video.badge.waveform.fill"_s, u"devices/camera-video"_s},
        {u"video.fill"_s, u"devices/camera-video"_s},
        {u"wrench.and.screwdriver"_s, u"actions/tools"_s},
        {u"xmark"_s, u"actions/edit-delete-remove"_s},
        {u"xmark.bin"_s, u"status/uninstall"_s},
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
    // The sidebar's are drawn for its size, all with one weight of line.
    if (const QString own = u":/symbols/%1.svg"_s.arg(symbolName); QFile::exists(own))
        return QIcon(own);
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
